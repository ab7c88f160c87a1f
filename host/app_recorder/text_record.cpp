#include "host/app_recorder/text_record.h"

#include <cmath>
#include <cstddef>
#include <cstring>
#include <span>

#include "host/app_recorder/wine_gdi.h"

namespace quillo::app {

namespace {

constexpr UINT kMostCharacters = 0x100000;
constexpr size_t kStringOffset = sizeof(EMREXTTEXTOUTW);

/// Zero-filled memory of the process heap; may be empty.
class Block {
 public:
  explicit Block(size_t bytes) : data_(HeapAlloc(GetProcessHeap(), HEAP_ZERO_MEMORY, bytes)) {}
  ~Block() { HeapFree(GetProcessHeap(), 0, data_); }
  Block(const Block&) = delete;
  Block& operator=(const Block&) = delete;
  template <typename T>
  [[nodiscard]] T* As() const {
    return static_cast<T*>(data_);
  }

 private:
  void* data_;
};

size_t StringBytes(UINT count) { return (count + 1) / 2 * 2 * sizeof(WCHAR); }

/// Whether all advances are those of the characters with the glyphs' numbers: GDI's, not the
/// program's.
bool AreCharacterAdvances(HDC dc, const WCHAR* glyphs, const INT* advances, UINT count) {
  for (UINT i = 0; i < count; ++i) {
    SIZE size;
    if (!GetTextExtentPoint32W(dc, glyphs + i, 1, &size) || size.cx != advances[i]) return false;
  }
  return true;
}

void SetGlyphAdvances(HDC dc, const WCHAR* glyphs, INT* advances, UINT count) {
  const Block ends(count * sizeof(INT));
  SIZE size;
  if (ends.As<INT>() == nullptr ||
      !GetTextExtentExPointI(dc, reinterpret_cast<LPWORD>(const_cast<WCHAR*>(glyphs)),
                             static_cast<int>(count), 0, nullptr, ends.As<INT>(), &size)) {
    return;
  }
  INT last = 0;
  for (UINT i = 0; i < count; ++i) {
    advances[i] = ends.As<INT>()[i] - last;
    last = ends.As<INT>()[i];
  }
}

/// The pixels of `count` pairs of advances as logical units along the line, y upwards.
void ToLogical(HDC dc, const POINT* pixels, UINT count, INT* advances) {
  LOGFONTW font = {};
  GetObjectW(GetCurrentObject(dc, OBJ_FONT), sizeof font, &font);
  const double angle = font.lfEscapement * 3.14159265358979 / 1800;
  POINT unit[2] = {{0, 0}, {1000, 1000}};
  LPtoDP(dc, unit, 2);
  // In this mode GDI measures text as if no axis were mirrored.
  const bool compatible = GetGraphicsMode(dc) == GM_COMPATIBLE;
  const LONG flip_x = compatible && unit[1].x < unit[0].x ? -1 : 1;
  const LONG flip_y = compatible && unit[1].y < unit[0].y ? -1 : 1;
  POINT pen = {}, last = {};
  for (UINT i = 0; i < count; ++i) {
    pen.x += pixels[i].x;
    pen.y += pixels[i].y;
    POINT ends[2] = {{0, 0}, {pen.x * flip_x, pen.y * flip_y}};
    DPtoLP(dc, ends, 2);
    const double x = ends[1].x - ends[0].x, y = ends[1].y - ends[0].y;
    const POINT at = {std::lround(std::cos(angle) * x - std::sin(angle) * y),
                      std::lround(std::sin(angle) * x + std::cos(angle) * y)};
    advances[2 * i] = at.x - last.x;
    advances[2 * i + 1] = last.y - at.y;
    last = at;
  }
}

}  // namespace

void MendTextRecord(HDC dc, UINT count, const POINT* advances) {
  if (count == 0 || count > kMostCharacters) return;
  const size_t size = kStringOffset + StringBytes(count) + count * sizeof(INT);
  const std::span<std::byte> record = LastRecords(dc, size);
  if (record.empty()) return;
  EMREXTTEXTOUTW text;
  std::memcpy(&text, record.data(), sizeof text);
  if (text.emr.iType != EMR_EXTTEXTOUTW || text.emr.nSize != size || text.emrtext.nChars != count ||
      text.emrtext.offString != kStringOffset ||
      text.emrtext.offDx != kStringOffset + StringBytes(count)) {
    return;
  }
  if ((text.emrtext.fOptions & ETO_PDY) != 0) {
    if (advances == nullptr) return;
    const Block whole(size + count * sizeof(INT));
    auto* bytes = whole.As<std::byte>();
    if (bytes == nullptr) return;
    std::memcpy(bytes, record.data(), text.emrtext.offDx);
    text.emr.nSize = static_cast<DWORD>(size + count * sizeof(INT));
    std::memcpy(bytes, &text, sizeof text);
    ToLogical(dc, advances, count, reinterpret_cast<INT*>(bytes + text.emrtext.offDx));
    ReplaceLastRecords(dc, size, {bytes, text.emr.nSize});
  } else if ((text.emrtext.fOptions & ETO_GLYPH_INDEX) != 0) {
    const auto* glyphs = reinterpret_cast<const WCHAR*>(record.data() + text.emrtext.offString);
    auto* recorded = reinterpret_cast<INT*>(record.data() + text.emrtext.offDx);
    if (AreCharacterAdvances(dc, glyphs, recorded, count)) {
      SetGlyphAdvances(dc, glyphs, recorded, count);
    }
  }
}

}  // namespace quillo::app
