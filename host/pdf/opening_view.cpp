#include "host/pdf/opening_view.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <optional>
#include <string_view>

namespace quillo::host::pdf {

namespace {

constexpr size_t kNowhere = std::string_view::npos;

/// The number that follows `key`.
std::optional<size_t> NumberAfter(std::string_view text, std::string_view key) {
  const size_t at = text.find(key);
  if (at == kNowhere) return std::nullopt;
  const size_t digits = text.find_first_not_of(" \r\n", at + key.size());
  if (digits == kNowhere) return std::nullopt;
  size_t number = 0;
  const auto parsed = std::from_chars(text.data() + digits, text.data() + text.size(), number);
  return parsed.ec == std::errc() ? std::optional(number) : std::nullopt;
}

/// Where an object begins, by the table at `table`, which has one section that begins with object
/// 0.
std::optional<size_t> PlaceOf(const ReadAt& read, size_t table, size_t number) {
  constexpr size_t kHead = 64, kEntry = 20;
  const size_t first = read(table, kHead).find("0000000000 65535 f");
  if (first == kNowhere) return std::nullopt;
  return NumberAfter(read(table + first + number * kEntry, kEntry), "");
}

}  // namespace

std::string OpenAtPageWidth(const ReadAt& read, size_t size, double top) {
  constexpr size_t kEnd = 512, kObject = 4096;
  std::string end = read(size - std::min(size, kEnd), kEnd);
  const size_t trailer = end.rfind("trailer");
  if (trailer == kNowhere) return {};
  end.erase(0, trailer);
  const auto table = NumberAfter(end, "startxref");
  const auto objects = NumberAfter(end, "/Size");
  const auto root = NumberAfter(end, "/Root");
  const auto info = NumberAfter(end, "/Info");
  if (!table || !objects || !root || !info) return {};
  const auto place = PlaceOf(read, *table, *root);
  if (!place) return {};
  constexpr std::string_view kType = "/Type /Catalog";
  std::string catalog = read(*place, kObject);
  const size_t type = catalog.find(kType);
  const size_t catalog_end = catalog.find("endobj");
  const auto pages = NumberAfter(catalog, "/Pages");
  if (type == kNowhere || catalog_end == kNowhere || type > catalog_end || !pages) return {};
  catalog.resize(catalog_end);
  const auto pages_place = PlaceOf(read, *table, *pages);
  if (!pages_place) return {};
  const auto first_page = NumberAfter(read(*pages_place, kObject), "/Kids [");
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
                *root, size, *objects, *root, *info, *table, size + update.size());
  return update + tail;
}

}  // namespace quillo::host::pdf
