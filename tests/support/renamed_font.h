#pragma once

#include "base/windows.h"

#include <cstdint>
#include <string_view>
#include <vector>

#include "fonts/cmap_builder.h"
#include "fonts/font_bytes.h"
#include "support/corpus.h"

namespace quillo::test {

/// A copy of the system's Liberation Sans whose family name is `family`.
inline std::vector<std::byte> RenamedFont(std::u16string_view family) {
  auto font = ReadFile("Z:/usr/share/fonts/truetype/liberation/LiberationSans-Regular.ttf");
  // A 'name' table of one family, style and full name, for Windows in US English.
  constexpr std::u16string_view kStyle = u"Regular";
  const std::pair<uint32_t, std::u16string_view> names[] = {{1, family}, {2, kStyle}, {4, family}};
  BigEndianBytes table;
  table.U16(0).U16(std::size(names)).U16(6 + 12 * std::size(names));
  BigEndianBytes texts;
  for (const auto& [id, text] : names) {
    table.U16(3).U16(1).U16(0x409).U16(id).U16(static_cast<uint32_t>(2 * text.size()));
    table.U16(static_cast<uint32_t>(texts.Get().size()));
    for (const char16_t c : text) texts.U16(c);
  }
  table.Append(texts.Get());

  const uint32_t table_count = BigEndian(font, 4, 2);
  for (size_t record = 12; record < 12 + size_t{16} * table_count; record += 16) {
    if (BigEndian(font, record, 4) != 0x6E616D65) continue;  // "name"
    const auto offset = static_cast<uint32_t>(font.size());
    Store<uint32_t>(font, record + 8, SwapBytes(offset));
    Store<uint32_t>(font, record + 12, SwapBytes(static_cast<uint32_t>(table.Get().size())));
  }
  font.insert(font.end(), table.Get().begin(), table.Get().end());
  return font;
}

/// A font file that this process can select, for as long as it lives.
class InstalledFont {
 public:
  explicit InstalledFont(std::vector<std::byte> file) : file_(std::move(file)) {
    DWORD count = 0;
    handle_ = AddFontMemResourceEx(file_.data(), static_cast<DWORD>(file_.size()), nullptr, &count);
  }
  ~InstalledFont() { RemoveFontMemResourceEx(handle_); }
  InstalledFont(const InstalledFont&) = delete;
  InstalledFont& operator=(const InstalledFont&) = delete;

  explicit operator bool() const { return handle_ != nullptr; }
  [[nodiscard]] const std::vector<std::byte>& File() const { return file_; }

 private:
  std::vector<std::byte> file_;
  HANDLE handle_;
};

}  // namespace quillo::test
