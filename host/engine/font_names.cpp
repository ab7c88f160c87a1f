#include "host/engine/font_names.h"

#include "base/arithmetic.h"
#include "base/bytes.h"

namespace quillo::host {

namespace {

constexpr DWORD kNameTable = 0x656D616E;  // 'name'

constexpr uint16_t kWindows = 3;  // platform: the names are big-endian UTF-16
constexpr uint16_t kEnglish = 0x0409;

enum NameId : uint16_t { kFamily = 1, kFullName = 4, kTypographicFamily = 16 };

}  // namespace

FileNames ReadFileNames(HDC dc) {
  const DWORD size = GetFontData(dc, kNameTable, 0, nullptr, 0);
  if (size == GDI_ERROR) return {};
  std::vector<std::byte> table(size);
  if (GetFontData(dc, kNameTable, 0, table.data(), size) == GDI_ERROR) return {};
  const auto number = [&](size_t offset) { return SwapBytes(LoadOrZero<uint16_t>(table, offset)); };

  FileNames names;
  const size_t count = number(2), strings = number(4);
  for (size_t i = 0; i < count; ++i) {
    constexpr size_t kHeader = 6, kRecord = 12;
    const size_t record = kHeader + i * kRecord;
    const uint16_t id = number(record + 6);
    if (number(record) != kWindows ||
        (id != kFamily && id != kFullName && id != kTypographicFamily)) {
      continue;
    }
    const size_t bytes = number(record + 8), start = strings + number(record + 10);
    if (!RangeFits(table.size(), start, bytes)) continue;
    std::wstring name;
    for (size_t at = start; at + 1 < start + bytes; at += 2) {
      name += static_cast<wchar_t>(number(at));
    }
    if (id == kFamily && (names.family.empty() || number(record + 4) == kEnglish)) {
      names.family = name;
    }
    names.every.push_back(std::move(name));
  }
  return names;
}

}  // namespace quillo::host
