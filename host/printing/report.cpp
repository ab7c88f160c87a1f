#include "host/printing/report.h"

#include "host/base/text.h"

namespace quillo::host {

namespace {

using Json = nlohmann::ordered_json;

/// "3 EMR_BITBLT, 1 EMR_PLGBLT"
std::string List(const std::map<std::string, uint64_t>& counts) {
  std::string text;
  for (const auto& [name, count] : counts) {
    if (!text.empty()) text += ", ";
    text += std::to_string(count) + " " + name;
  }
  return text;
}

/// A file's name, or null for a file that is not there.
Json NameOrNull(const std::string& name) { return name.empty() ? Json(nullptr) : Json(name); }

Json ToJson(const std::map<std::wstring, FontUse>& fonts) {
  Json json = Json::object();
  for (const auto& [face, use] : fonts) {
    json[ToUtf8(face)] = {{"used", ToUtf8(use.used)},
                          {"substituted", use.substituted},
                          {"characters", use.characters},
                          {"in_other_fonts", use.in_others},
                          {"missing", use.missing},
                          {"assumed_glyphs", use.assumed_glyphs},
                          {"dropped_glyphs", use.dropped_glyphs}};
  }
  return json;
}

Json ToJson(const std::vector<Loss>& losses) {
  Json json = Json::array();
  for (const Loss& loss : losses) json.push_back(loss.what);
  return json;
}

Json ToJson(const PageReport& page) {
  return {{"input", page.input},
          {"file", NameOrNull(page.file)},
          {"preview", NameOrNull(page.preview)},
          {"sheet", {{"width", page.sheet.width}, {"height", page.sheet.height}}},
          {"dpi", page.dpi},
          {"records", page.content.records},
          {"characters", page.content.characters},
          {"text", page.content.text},
          {"lost_characters", page.content.lost_characters},
          {"fonts", ToJson(page.drawn.fonts)},
          {"ddi_calls", page.calls.made},
          {"ddi_calls_refused", page.calls.refused},
          {"ddi_calls_unmade", page.calls.unmade},
          {"not_carried", page.drawn.not_carried},
          {"faults", page.drawn.faults},
          {"remarks", page.drawn.remarks},
          {"losses", ToJson(LossesOf(page))}};
}

Json FontFiles(const Json& calls) {
  Json fonts = Json::array();
  for (const Json& call : calls) {
    if (call["method"] == "NotifyEmbeddedFont" && call.contains("file")) {
      fonts.push_back(call["file"]);
    }
  }
  return fonts;
}

}  // namespace

std::vector<Loss> LossesOf(const PageReport& page) {
  std::vector<Loss> losses;
  const auto add = [&losses](std::string what, Loss::Kind kind = Loss::Kind::kMissing) {
    losses.push_back({kind, std::move(what)});
  };
  const auto add_counts = [&add](const char* what, const std::map<std::string, uint64_t>& counts) {
    if (!counts.empty()) add(what + List(counts));
  };
  add_counts("not carried to the page: ", page.drawn.not_carried);
  for (const auto& [face, use] : page.drawn.fonts) {
    const std::string missing = "the font \"" + ToUtf8(face) + "\" is not installed; ";
    if (use.assumed_glyphs != 0) {
      add(missing + std::to_string(use.assumed_glyphs) +
          " glyph numbers are drawn with those of \"" + ToUtf8(use.used) + "\"");
    }
    if (use.dropped_glyphs != 0) {
      add(missing + std::to_string(use.dropped_glyphs) +
          " glyph numbers mean nothing without it (" +
          (use.reversible
               ? "--assume-glyph-order draws them"
               : "those of \"" + ToUtf8(use.used) + "\" cannot be turned back into characters") +
          ")");
    }
    const std::string lacking = "the font \"" + ToUtf8(face) + "\" lacks ";
    if (use.missing != 0) {
      add(lacking + std::to_string(use.missing) +
          " characters that no installed font has; they are boxes");
    }
    if (use.in_others != 0) {
      add(lacking + std::to_string(use.in_others) + " characters; other fonts show them",
          Loss::Kind::kSubstituted);
    }
  }
  add_counts("the driver refused to draw: ", page.calls.refused);
  add_counts("left out by the print host, as one page would take too much memory: ",
             page.calls.unmade);
  for (const auto& [face, count] : page.content.lost_characters) {
    add(std::to_string(count) + " glyphs of \"" + face +
        "\" have no characters on the page: they cannot be searched");
  }
  for (const std::string& fault : page.drawn.faults) add(fault);
  for (const std::string& what : page.drawn.substitutions) add(what, Loss::Kind::kSubstituted);
  return losses;
}

Json ToJson(const JobReport& report) {
  Json pages = Json::array();
  for (const PageReport& page : report.pages) pages.push_back(ToJson(page));
  return {{"printer", report.printer},
          {"document", report.document},
          {"job_id", report.job_id},
          {"copies", {{"count", report.copies.count}, {"collated", report.copies.collated}}},
          {"pages", std::move(pages)},
          {"pdf", NameOrNull(report.pdf)},
          {"pdf_approximated", report.client.pdf.is_object()
                                   ? report.client.pdf.value("approximated", Json::object())
                                   : Json::object()},
          {"fonts", FontFiles(report.client.calls)},
          {"notifications", report.client.calls},
          {"job_end_event", report.client.job_end_event}};
}

}  // namespace quillo::host
