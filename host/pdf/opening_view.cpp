#include "host/pdf/opening_view.h"

#include <charconv>
#include <cstdio>
#include <optional>

namespace quillo::host::pdf {

namespace {

constexpr size_t kNowhere = std::string_view::npos;

/// The number that follows `key` at or behind `from`.
std::optional<size_t> NumberAt(std::string_view text, std::string_view key, size_t from) {
  const size_t at = text.find(key, from);
  if (at == kNowhere) return std::nullopt;
  const size_t digits = text.find_first_not_of(" \r\n", at + key.size());
  if (digits == kNowhere) return std::nullopt;
  size_t number = 0;
  const auto parsed = std::from_chars(text.data() + digits, text.data() + text.size(), number);
  return parsed.ec == std::errc() ? std::optional(number) : std::nullopt;
}

/// An object's text, by the table at `table`, which has one section that begins with object 0.
std::string_view ObjectText(std::string_view file, size_t table, size_t number) {
  constexpr size_t kEntry = 20;
  const size_t first = file.find("0000000000 65535 f", table);
  if (first == kNowhere) return {};
  const auto offset =
      NumberAt(file.substr(0, first + (number + 1) * kEntry), "", first + number * kEntry);
  if (!offset || *offset >= table) return {};
  const size_t end = file.find("endobj", *offset);
  return end == kNowhere ? std::string_view() : file.substr(*offset, end - *offset);
}

}  // namespace

std::string OpenAtPageWidth(std::string_view file, double top) {
  const size_t last = file.rfind("startxref");
  const size_t trailer = file.rfind("trailer");
  if (last == kNowhere || trailer == kNowhere) return {};
  const auto table = NumberAt(file, "startxref", last);
  const auto size = NumberAt(file, "/Size", trailer);
  const auto root = NumberAt(file, "/Root", trailer);
  const auto info = NumberAt(file, "/Info", trailer);
  if (!table || !size || !root || !info || *table >= file.size()) return {};
  constexpr std::string_view kType = "/Type /Catalog";
  std::string catalog(ObjectText(file, *table, *root));
  const size_t type = catalog.find(kType);
  const auto pages = NumberAt(catalog, "/Pages", 0);
  if (type == kNowhere || !pages) return {};
  const auto first_page = NumberAt(ObjectText(file, *table, *pages), "/Kids [", 0);
  if (!first_page) return {};

  char view[128];
  std::snprintf(view, sizeof view,
                "\n   /OpenAction [ %zu 0 R /FitH %.2f ]\n"
                "   /ViewerPreferences << /DisplayDocTitle true >>",
                *first_page, top);
  catalog.insert(type + kType.size(), view);
  const std::string update = catalog + "endobj\n";
  char tail[256];
  std::snprintf(tail, sizeof tail,
                "xref\n%zu 1\n%010zu 00000 n \n"
                "trailer\n<< /Size %zu\n   /Root %zu 0 R\n   /Info %zu 0 R\n   /Prev %zu\n>>\n"
                "startxref\n%zu\n%%%%EOF\n",
                *root, file.size(), *size, *root, *info, *table, file.size() + update.size());
  return update + tail;
}

}  // namespace quillo::host::pdf
