#include "fonts/cmap4.h"

#include <span>

namespace quillo {
namespace {

class DcCmapSource : public fonts::CmapSource {
 public:
  explicit DcCmapSource(HDC dc) : dc_(dc) {}
  uint32_t Read(uint32_t offset, MutableBytes out) override {
    constexpr DWORD kCmapTag = 0x70616D63;  // the bytes "cmap"
    static_assert(kFailed == GDI_ERROR);
    return GetFontData(dc_, kCmapTag, offset, out.data(), static_cast<DWORD>(out.size()));
  }

 private:
  HDC dc_;
};

}  // namespace

int32_t CCmap4::Load(HDC dc) {
  table_ = {};
  data_.Reset();
  DcCmapSource source(dc);
  const uint32_t size = Cmap4Size(source);
  if (size == 0) return 0;
  const size_t word_count = (size + 1) / 2;
  GlobalBlock block = GlobalBlock::Allocate(word_count * sizeof(uint16_t));
  if (!block) return 0;
  const std::span words(static_cast<uint16_t*>(block.Get()), word_count);
  if (!ReadCmap4(source, words)) return 0;
  data_ = std::move(block);
  table_ = fonts::Cmap4Table(words);
  return 1;
}

uint16_t CountMappedCharacters(HDC dc) {
  CCmap4 cmap;
  cmap.Load(dc);
  return cmap.MappedCount();
}

uint16_t GlyphOfCharacter(HDC dc, uint16_t character) {
  CCmap4 cmap;
  cmap.Load(dc);
  return cmap.GlyphOf(character);
}

}  // namespace quillo
