// Draws the sample metafiles of this folder with plain GDI calls, as any application would.
//
//   draw_samples.exe FOLDER
//
// Drawing units are tenths of a millimetre on an A4 sheet.
#include "base/windows.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "base/gdi_owners.h"
#include "host/engine/page_records.h"

namespace quillo {
namespace {

constexpr int kWidth = 2100;
constexpr int kHeight = 2970;
constexpr double kPi = 3.14159265358979323846;

constexpr COLORREF kInk = RGB(0x22, 0x26, 0x33);
constexpr std::array<COLORREF, 6> kColours = {RGB(0xD6, 0x3B, 0x2F), RGB(0xE8, 0x8B, 0x1A),
                                              RGB(0xE7, 0xC5, 0x2C), RGB(0x3E, 0x9B, 0x4F),
                                              RGB(0x2B, 0x7A, 0xB8), RGB(0x6D, 0x4C, 0xA3)};

int Round(double value) { return static_cast<int>(std::lround(value)); }

POINT OnCircle(POINT centre, double radius, double turns) {
  const double angle = turns * 2 * kPi;
  return {centre.x + Round(radius * std::sin(angle)), centre.y - Round(radius * std::cos(angle))};
}

/// A GDI call, or its replacement where the recorder would drop records.
template <typename Function>
Function* Recording(const char* name, Function* gdi) {
  static const std::vector<DWORD> dropped = host::DroppedRecords();
  void* const call = host::FindRecordingCall(name, dropped);
  return call != nullptr ? reinterpret_cast<Function*>(call) : gdi;
}

class Sheet {
 public:
  explicit Sheet(HDC dc) : dc_(dc) {}

  [[nodiscard]] HDC Dc() const { return dc_; }

  [[nodiscard]] Pen WidePen(DWORD style, DWORD width, COLORREF colour) const {
    const LOGBRUSH brush = {BS_SOLID, colour, 0};
    const auto create = Recording("ExtCreatePen", &ExtCreatePen);
    const auto select = Recording("SelectObject", &SelectObject);
    Pen pen(create(PS_GEOMETRIC | style, width, &brush, 0, nullptr));
    select(dc_, select(dc_, pen.Get()));  // from now on the metafile holds it
    return pen;
  }

  /// Draws with a pen and a brush selected; null is the stock object that draws nothing.
  void With(HPEN pen, HBRUSH brush, const std::function<void()>& draw) const {
    const SelectScope with_pen(dc_, pen != nullptr ? pen : GetStockObject(NULL_PEN));
    const SelectScope with_brush(dc_, brush != nullptr ? brush : GetStockObject(NULL_BRUSH));
    draw();
  }

  void Text(int x, int y, int height, const wchar_t* text, const wchar_t* face = L"Arial",
            int escapement = 0, COLORREF colour = kInk) const {
    const Font font(CreateFontW(-height, 0, escapement, escapement, FW_NORMAL, FALSE, FALSE, FALSE,
                                DEFAULT_CHARSET, OUT_TT_PRECIS, CLIP_DEFAULT_PRECIS,
                                DEFAULT_QUALITY, DEFAULT_PITCH, face));
    const SelectScope with_font(dc_, font.Get());
    SetBkMode(dc_, TRANSPARENT);
    SetTextColor(dc_, colour);
    SetTextAlign(dc_, TA_BASELINE | TA_LEFT);
    ExtTextOutW(dc_, x, y, 0, nullptr, text, static_cast<UINT>(lstrlenW(text)), nullptr);
  }

  void Title(const wchar_t* text) const {
    Text(150, 240, 90, text);
    const Pen rule(CreatePen(PS_SOLID, 4, kInk));
    With(rule.Get(), nullptr, [this] {
      MoveToEx(dc_, 150, 280, nullptr);
      LineTo(dc_, kWidth - 150, 280);
    });
  }

 private:
  HDC dc_;
};

void DrawDashes(const Sheet& sheet) {
  constexpr std::array<DWORD, 5> kStyles = {PS_SOLID, PS_DASH, PS_DOT, PS_DASHDOT, PS_DASHDOTDOT};
  for (size_t i = 0; i < kStyles.size(); ++i) {
    const Pen pen = sheet.WidePen(PS_ENDCAP_FLAT | kStyles[i], 14, kColours[i]);
    const int y = 380 + 50 * static_cast<int>(i);
    sheet.With(pen.Get(), nullptr, [&sheet, y] {
      MoveToEx(sheet.Dc(), 150, y, nullptr);
      LineTo(sheet.Dc(), 950, y);
    });
  }
}

void DrawJoinsAndCaps(const Sheet& sheet) {
  constexpr std::array<DWORD, 3> kKinds = {PS_JOIN_ROUND | PS_ENDCAP_ROUND,
                                           PS_JOIN_BEVEL | PS_ENDCAP_SQUARE,
                                           PS_JOIN_MITER | PS_ENDCAP_FLAT};
  for (size_t i = 0; i < kKinds.size(); ++i) {
    const Pen pen = sheet.WidePen(PS_SOLID | kKinds[i], 40, kColours[3 + i]);
    const int x = 1080 + 310 * static_cast<int>(i);
    const std::array<POINT, 3> angle = {{{x, 580}, {x + 110, 390}, {x + 220, 580}}};
    sheet.With(pen.Get(), nullptr, [&] { Polyline(sheet.Dc(), angle.data(), 3); });
  }
}

void DrawShapes(const Sheet& sheet) {
  const HDC dc = sheet.Dc();
  const Pen outline(CreatePen(PS_SOLID, 6, kInk));
  const auto brush = [](size_t i) { return Brush(CreateSolidBrush(kColours[i])); };
  sheet.With(outline.Get(), brush(0).Get(), [dc] { Rectangle(dc, 150, 760, 450, 960); });
  const Brush orange = brush(1);
  sheet.With(outline.Get(), orange.Get(), [dc] { RoundRect(dc, 520, 760, 820, 960, 90, 90); });
  const Brush yellow = brush(2);
  sheet.With(outline.Get(), yellow.Get(), [dc] { Ellipse(dc, 890, 760, 1190, 960); });
  const Brush green = brush(3);
  sheet.With(outline.Get(), green.Get(),
             [dc] { Pie(dc, 1260, 760, 1560, 960, 1560, 860, 1330, 760); });
  const Brush blue = brush(4);
  sheet.With(outline.Get(), blue.Get(),
             [dc] { Chord(dc, 1630, 760, 1930, 960, 1930, 860, 1630, 800); });

  for (int hatch = HS_HORIZONTAL; hatch <= HS_DIAGCROSS; ++hatch) {
    const Brush hatched(CreateHatchBrush(hatch, kColours[static_cast<size_t>(hatch)]));
    SetBkMode(dc, TRANSPARENT);
    const int x = 150 + 305 * hatch;
    sheet.With(outline.Get(), hatched.Get(), [dc, x] { Rectangle(dc, x, 1040, x + 255, 1240); });
  }
}

/// A star whose inside is decided by the fill mode, and one that clips stripes.
void DrawStars(const Sheet& sheet) {
  const HDC dc = sheet.Dc();
  const auto star = [](POINT centre, double radius) {
    std::array<POINT, 5> points{};
    for (size_t i = 0; i < points.size(); ++i) {
      points[i] = OnCircle(centre, radius, 0.4 * static_cast<double>(i));
    }
    return points;
  };
  const Pen outline(CreatePen(PS_SOLID, 6, kInk));
  const Brush fill(CreateSolidBrush(kColours[5]));
  constexpr std::array<int, 2> kModes = {ALTERNATE, WINDING};
  for (size_t i = 0; i < kModes.size(); ++i) {
    SetPolyFillMode(dc, kModes[i]);
    const auto points = star({400 + 550 * static_cast<int>(i), 1600}, 260);
    sheet.With(outline.Get(), fill.Get(), [&] { Polygon(dc, points.data(), 5); });
  }

  const int saved = SaveDC(dc);
  BeginPath(dc);
  const auto points = star({1600, 1600}, 300);
  Polygon(dc, points.data(), 5);
  EndPath(dc);
  SetPolyFillMode(dc, WINDING);
  SelectClipPath(dc, RGN_COPY);
  for (int i = 0; i < 24; ++i) {
    const Brush stripe(CreateSolidBrush(kColours[static_cast<size_t>(i) % kColours.size()]));
    const int y = 1290 + 25 * i;
    sheet.With(nullptr, stripe.Get(), [dc, y] { Rectangle(dc, 1280, y, 1920, y + 27); });
  }
  RestoreDC(dc, saved);
}

/// A rose of Bézier petals, turned by the world transform.
void DrawRose(const Sheet& sheet) {
  const HDC dc = sheet.Dc();
  SetGraphicsMode(dc, GM_ADVANCED);
  constexpr int kPetals = 18;
  for (int i = 0; i < kPetals; ++i) {
    const double angle = 2 * kPi * i / kPetals;
    const XFORM turn = {static_cast<float>(std::cos(angle)),
                        static_cast<float>(std::sin(angle)),
                        static_cast<float>(-std::sin(angle)),
                        static_cast<float>(std::cos(angle)),
                        1050,
                        2350};
    const int saved = SaveDC(dc);
    ModifyWorldTransform(dc, &turn, MWT_LEFTMULTIPLY);
    const Pen pen(CreatePen(PS_SOLID, 5, kColours[static_cast<size_t>(i) % kColours.size()]));
    const std::array<POINT, 7> petal = {
        {{0, 0}, {180, -120}, {330, -240}, {430, 0}, {330, 240}, {180, 120}, {0, 0}}};
    sheet.With(pen.Get(), nullptr, [&] { PolyBezier(dc, petal.data(), 7); });
    RestoreDC(dc, saved);
  }
}

void DrawShapesSheet(const Sheet& sheet) {
  sheet.Title(L"Lines, shapes, paths");
  DrawDashes(sheet);
  DrawJoinsAndCaps(sheet);
  DrawShapes(sheet);
  DrawStars(sheet);
  DrawRose(sheet);
}

void DrawTextSheet(const Sheet& sheet) {
  const HDC dc = sheet.Dc();
  sheet.Title(L"Text stays text");
  sheet.Text(150, 450, 60, L"The quick brown fox jumps over the lazy dog.");
  sheet.Text(150, 560, 60, L"Zwölf Boxkämpfer jagen Viktor quer über den Sylter Deich.",
             L"Times New Roman");
  sheet.Text(150, 670, 60, L"Ξεσκεπάζω τὴν ψυχοφθόρα βδελυγμία.", L"Times New Roman");
  sheet.Text(150, 780, 60, L"Съешь же ещё этих мягких французских булок.", L"Arial");
  sheet.Text(150, 890, 50, L"int main() { return 0; }  // fixed pitch", L"Courier New");
  for (int turn = 0; turn < 12; ++turn) {
    const POINT start = OnCircle({1050, 1650}, 130, turn / 12.0);
    sheet.Text(start.x, start.y, 55, L"turned text", L"Arial", (900 - 300 * turn) % 3600,
               kColours[static_cast<size_t>(turn) % kColours.size()]);
  }
  SetTextAlign(dc, TA_CENTER | TA_BASELINE);
  SetTextColor(dc, kInk);
  const Font wide(CreateFontW(-70, 60, 0, 0, FW_BOLD, TRUE, TRUE, FALSE, DEFAULT_CHARSET,
                              OUT_TT_PRECIS, CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY, DEFAULT_PITCH,
                              L"Arial"));
  const SelectScope with_font(dc, wide.Get());
  const std::wstring text = L"bold, italic, underlined, wide";
  ExtTextOutW(dc, kWidth / 2, 2500, 0, nullptr, text.c_str(), static_cast<UINT>(text.size()),
              nullptr);
}

/// A hue wheel, its alpha falling to the rim, premultiplied as AlphaBlend wants it.
std::vector<uint32_t> MakeWheel(int size) {
  std::vector<uint32_t> pixels(static_cast<size_t>(size) * static_cast<size_t>(size));
  const double centre = (size - 1) / 2.0;
  for (int y = 0; y < size; ++y) {
    for (int x = 0; x < size; ++x) {
      const double dx = x - centre;
      const double dy = y - centre;
      const double radius = std::min(1.0, std::hypot(dx, dy) / centre);
      const double alpha = 1.0 - radius * radius;
      uint32_t pixel = static_cast<uint32_t>(Round(255 * alpha)) << 24;
      for (int channel = 0; channel < 3; ++channel) {
        const double wave = 0.5 + 0.5 * std::cos(std::atan2(dy, dx) + channel * 2 * kPi / 3);
        pixel |= static_cast<uint32_t>(Round(255 * alpha * wave)) << (8 * channel);
      }
      pixels[static_cast<size_t>(y) * static_cast<size_t>(size) + static_cast<size_t>(x)] = pixel;
    }
  }
  return pixels;
}

BITMAPINFO TopDown32(int size) {
  BITMAPINFO info = {};
  info.bmiHeader.biSize = sizeof info.bmiHeader;
  info.bmiHeader.biWidth = size;
  info.bmiHeader.biHeight = -size;
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  return info;
}

void DrawPicturesSheet(const Sheet& sheet) {
  const HDC dc = sheet.Dc();
  sheet.Title(L"Pictures");
  constexpr int kSize = 128;
  const std::vector<uint32_t> wheel = MakeWheel(kSize);
  const BITMAPINFO info = TopDown32(kSize);
  StretchDIBits(dc, 150, 400, 800, 800, 0, 0, kSize, kSize, wheel.data(), &info, DIB_RGB_COLORS,
                SRCCOPY);

  for (int i = 0; i < 10; ++i) {
    const Brush stripe(CreateSolidBrush(kColours[static_cast<size_t>(i) % kColours.size()]));
    const RECT area = {1150, 400 + 80 * i, 1950, 440 + 80 * i};
    FillRect(dc, &area, stripe.Get());
  }
  void* bits = nullptr;
  const Bitmap section(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
  memcpy(bits, wheel.data(), wheel.size() * sizeof wheel[0]);
  const CreatedDc memory(CreateCompatibleDC(nullptr));
  {
    const SelectScope with_section(memory.Get(), section.Get());
    AlphaBlend(dc, 1150, 400, 800, 800, memory.Get(), 0, 0, kSize, kSize,
               {AC_SRC_OVER, 0, 255, AC_SRC_ALPHA});
    SetStretchBltMode(dc, COLORONCOLOR);
    StretchBlt(dc, 150, 1400, 400, 800, memory.Get(), 0, 0, kSize, kSize, SRCCOPY);
    StretchBlt(dc, 650, 1400, 800, 400, memory.Get(), 32, 32, 64, 32, NOTSRCCOPY);
  }

  TRIVERTEX corners[] = {{650, 1900, 0xD600, 0x3B00, 0x2F00, 0},
                         {1950, 2200, 0x2B00, 0x7A00, 0xB800, 0}};
  GRADIENT_RECT gradient = {0, 1};
  GradientFill(dc, corners, 2, &gradient, 1, GRADIENT_FILL_RECT_H);
}

bool Draw(const std::wstring& path, const wchar_t* title, void (*draw)(const Sheet&)) {
  const RECT frame = {0, 0, kWidth * 10, kHeight * 10};
  std::wstring description = std::wstring(L"Quillo samples") + L'\0' + title + L'\0';
  const HDC dc = Recording("CreateEnhMetaFileW", &CreateEnhMetaFileW)(nullptr, path.c_str(), &frame,
                                                                      description.c_str());
  if (dc == nullptr) return false;
  SetMapMode(dc, MM_ANISOTROPIC);
  SetWindowExtEx(dc, GetDeviceCaps(dc, HORZSIZE) * 10, GetDeviceCaps(dc, VERTSIZE) * 10, nullptr);
  SetViewportExtEx(dc, GetDeviceCaps(dc, HORZRES), GetDeviceCaps(dc, VERTRES), nullptr);
  draw(Sheet(dc));
  const EnhMetafile metafile(Recording("CloseEnhMetaFile", &CloseEnhMetaFile)(dc));
  return static_cast<bool>(metafile);
}

}  // namespace
}  // namespace quillo

int wmain(int count, wchar_t** arguments) {
  if (count != 2) {
    std::fputs("usage: draw_samples FOLDER\n", stderr);
    return 2;
  }
  const std::wstring folder = std::wstring(arguments[1]) + L'\\';
  const bool done = quillo::Draw(folder + L"shapes.emf", L"Shapes", quillo::DrawShapesSheet) &&
                    quillo::Draw(folder + L"text.emf", L"Text", quillo::DrawTextSheet) &&
                    quillo::Draw(folder + L"pictures.emf", L"Pictures", quillo::DrawPicturesSheet);
  if (!done) std::fputs("draw_samples: a metafile could not be written\n", stderr);
  return done ? 0 : 1;
}
