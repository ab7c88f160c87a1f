#include "base/ddi.h"

#include <cwchar>
#include <string>
#include <vector>

#include "bench/compare_sides.h"
#include "capture/hooks.h"
#include "host/engine/services/brushes.h"
#include "host/engine/services/fonts.h"
#include "host/engine/services/strings.h"
#include "support/driver_job.h"

// What a text call of 43 characters costs on its way through capture, sink and playback, as a
// multiple of the same GDI calls made directly on a metafile DC; as characters, and as glyph
// indexes that are turned back into characters.
int main() {
  using namespace quillo;
  const std::wstring text = L"The quick brown fox jumps over the lazy dog";
  constexpr const wchar_t* kFace = L"Liberation Sans";
  const XFORM transform = {0.05f, 0, 0, 0.05f, 0, 0};
  IFIMETRICS metrics = {};
  metrics.fwdUnitsPerEm = 2048;
  metrics.usWinWeight = FW_NORMAL;

  test::DriverJob job;
  host::BrushObject brush{0x112233};
  host::FontObject font{metrics, {kFace, L"Regular", kFace}, {0.05f, 0, 0, 0.05f, 0, 0}};
  const auto string_of = [](const std::wstring& units, FLONG accelerators) {
    return host::StringObject(std::vector<GLYPHPOS>(units.size()), units,
                              accelerators | SO_FLAG_DEFAULT_PLACEMENT, RECTL{});
  };
  const auto draw = [&](HDC page, STROBJ& string) {
    quillo::DrvTextOut(job.SurfaceOn(page), &string, &font, nullptr, nullptr, nullptr, &brush,
                       nullptr, nullptr, R2_COPYPEN);
  };
  const auto direct = [&](HDC page) {
    ModifyWorldTransform(page, nullptr, MWT_IDENTITY);
    SetGraphicsMode(page, GM_COMPATIBLE);
    SaveDC(page);
    SetGraphicsMode(page, GM_ADVANCED);
    SetWorldTransform(page, &transform);
    LOGFONTW description = {};
    description.lfHeight = -metrics.fwdUnitsPerEm;
    description.lfWeight = FW_NORMAL;
    std::wcscpy(description.lfFaceName, kFace);
    const HFONT created = CreateFontIndirectW(&description);
    const HGDIOBJ previous = SelectObject(page, created);
    SetTextColor(page, RGB(0x11, 0x22, 0x33));
    SetBkMode(page, TRANSPARENT);
    SetTextAlign(page, TA_BASELINE);
    const RECT none = {};
    ExtTextOutW(page, 0, 0, 0, &none, text.data(), static_cast<UINT>(text.size()), nullptr);
    SelectObject(page, previous);
    DeleteObject(created);
    RestoreDC(page, -1);
    ModifyWorldTransform(page, nullptr, MWT_IDENTITY);
    SetGraphicsMode(page, GM_COMPATIBLE);
  };

  auto characters = string_of(text, 0);
  // In this font glyph = character - 29 holds for ASCII.
  std::wstring glyphs = text;
  for (wchar_t& c : glyphs) c = static_cast<wchar_t>(c - 29);
  auto indexes = string_of(glyphs, SO_GLYPHINDEX_TEXTOUT);
  return bench::CompareSides(
             {"text of 43 characters", 1.10}, [&](HDC page) { draw(page, characters); }, direct) |
         bench::CompareSides(
             {"text of 43 glyph indexes", 1.20}, [&](HDC page) { draw(page, indexes); }, direct);
}
