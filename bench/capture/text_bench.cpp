#include "base/ddi.h"

#include <cwchar>
#include <string>
#include <vector>

#include "bench/compare_sides.h"
#include "bench/driver_job.h"
#include "capture/hooks.h"
#include "host/engine/services/brushes.h"
#include "host/engine/services/fonts.h"
#include "host/engine/services/strings.h"

// What a text call of 43 characters costs on its way through capture, sink and playback, as a
// multiple of the same GDI calls made directly on a metafile DC; as characters, and as glyph
// indexes that are turned back into characters.
namespace quillo {
namespace {

const std::wstring kText = L"The quick brown fox jumps over the lazy dog";
constexpr const wchar_t* kFace = L"Liberation Sans";
constexpr SHORT kUnitsPerEm = 2048;
constexpr XFORML kFontTransform = {0.05f, 0, 0, 0.05f, 0, 0};

IFIMETRICS Metrics() {
  IFIMETRICS metrics = {};
  metrics.fwdUnitsPerEm = kUnitsPerEm;
  metrics.usWinWeight = FW_NORMAL;
  return metrics;
}

class DriverSide : bench::DriverJob {
 public:
  DriverSide(const std::wstring& text, FLONG accelerators)
      : text_(std::vector<GLYPHPOS>(text.size()), text, accelerators | SO_FLAG_DEFAULT_PLACEMENT,
              RECTL{}) {}

  void Draw(HDC page) {
    quillo::DrvTextOut(SurfaceOn(page), &text_, &font_, nullptr, nullptr, nullptr, &brush_, nullptr,
                       nullptr, R2_COPYPEN);
  }

 private:
  host::BrushObject brush_{0x112233};
  host::FontObject font_{Metrics(), {kFace, L"Regular", kFace}, kFontTransform};
  host::StringObject text_;
};

struct DirectSide {
  static void Draw(HDC page) {
    ModifyWorldTransform(page, nullptr, MWT_IDENTITY);
    SetGraphicsMode(page, GM_COMPATIBLE);
    SaveDC(page);
    SetGraphicsMode(page, GM_ADVANCED);
    const XFORM transform = {kFontTransform.eM11, 0, 0, kFontTransform.eM22, 0, 0};
    SetWorldTransform(page, &transform);
    LOGFONTW description = {};
    description.lfHeight = -kUnitsPerEm;
    description.lfWeight = FW_NORMAL;
    std::wcscpy(description.lfFaceName, kFace);
    const HFONT font = CreateFontIndirectW(&description);
    const HGDIOBJ previous = SelectObject(page, font);
    SetTextColor(page, RGB(0x11, 0x22, 0x33));
    SetBkMode(page, TRANSPARENT);
    SetTextAlign(page, TA_BASELINE);
    const RECT none = {};
    ExtTextOutW(page, 0, 0, 0, &none, kText.data(), static_cast<UINT>(kText.size()), nullptr);
    SelectObject(page, previous);
    DeleteObject(font);
    RestoreDC(page, -1);
    ModifyWorldTransform(page, nullptr, MWT_IDENTITY);
    SetGraphicsMode(page, GM_COMPATIBLE);
  }
};

int Run() {
  // In this font glyph = character - 29 holds for ASCII.
  std::wstring glyphs = kText;
  for (wchar_t& c : glyphs) c = static_cast<wchar_t>(c - 29);
  DirectSide direct;
  DriverSide characters(kText, 0);
  DriverSide indexes(glyphs, SO_GLYPHINDEX_TEXTOUT);
  return bench::CompareSides({"43 characters", 1.4}, characters, direct) |
         bench::CompareSides({"43 glyph indexes", 1.4}, indexes, direct);
}

}  // namespace
}  // namespace quillo

int main() { return quillo::Run(); }
