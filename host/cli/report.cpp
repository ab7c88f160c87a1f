#include "host/cli/report.h"

#include "host/base/text.h"

namespace quillo::host {

namespace {

using Json = nlohmann::ordered_json;

/// A file's name, or null for a file that is not there.
Json NameOrNull(const std::string& name) { return name.empty() ? Json(nullptr) : Json(name); }

Json ToJson(const std::map<std::wstring, emf::FontUse>& fonts) {
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
          {"not_carried", page.drawn.not_carried},
          {"faults", page.drawn.faults}};
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

Json ToJson(const JobReport& report) {
  Json pages = Json::array();
  for (const PageReport& page : report.pages) pages.push_back(ToJson(page));
  return {{"printer", report.printer},
          {"document", report.document},
          {"job_id", report.job_id},
          {"pages", std::move(pages)},
          {"fonts", FontFiles(report.client.calls)},
          {"notifications", report.client.calls},
          {"job_end_event", report.client.job_end_event}};
}

}  // namespace quillo::host
