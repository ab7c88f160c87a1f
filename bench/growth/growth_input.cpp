// Makes one input of a growth series, in which one thing grows and all else stays.
//
//   growth_input.exe SERIES COUNT FILE
//
// SERIES is a name of kSeries; FILE is written as a metafile of one Letter page at 600 dpi, for
// `pages` as plain text. The exit code is 2 for bad arguments, 1 when the file cannot be made.
#include "base/windows.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string_view>
#include <vector>

namespace {

constexpr int kWidth = 5100;  // pixels of the page
constexpr int kHeight = 6600;

/// A number below `bound` that looks like chance and is the same in every run.
int Scattered(int index, int bound) {
  return static_cast<int>((static_cast<unsigned>(index) * 2654435761u >> 8) %
                          static_cast<unsigned>(bound));
}

POINT ScatteredPoint(int index) {
  return {Scattered(2 * index, kWidth), Scattered(2 * index + 1, kHeight)};
}

void DrawLines(HDC dc, int count) {
  for (int i = 0; i < count; ++i) {
    const POINT from = ScatteredPoint(i);
    MoveToEx(dc, from.x, from.y, nullptr);
    LineTo(dc, from.x + 90, from.y + 60);
  }
}

void DrawPolyline(HDC dc, int count) {
  std::vector<POINT> points;
  for (int i = 0; i < count; ++i) {
    points.push_back({Scattered(i, 40) + i % kWidth, Scattered(i + 1, 40) + i / kWidth * 50});
  }
  Polyline(dc, points.data(), count);
}

void DrawText(HDC dc, int count) {
  for (int i = 0; i < count; ++i) {
    const POINT at = ScatteredPoint(i);
    TextOutW(dc, at.x, at.y, L"Sixteen letters.", 16);
  }
}

void DrawFonts(HDC dc, int count) {
  for (int i = 0; i < count; ++i) {
    const HFONT font = CreateFontW(-(20 + i % 200), 5 + i / 200, 0, 0, 400, FALSE, FALSE, FALSE,
                                   DEFAULT_CHARSET, 0, 0, 0, 0, L"Liberation Sans");
    const HGDIOBJ before = SelectObject(dc, font);
    const POINT at = ScatteredPoint(i);
    TextOutW(dc, at.x, at.y, L"Ag", 2);
    SelectObject(dc, before);
    DeleteObject(font);
  }
}

/// One shape seen through many small windows.
void DrawClipped(HDC dc, int count) {
  std::vector<BYTE> bytes(sizeof(RGNDATAHEADER) + static_cast<size_t>(count) * sizeof(RECT));
  auto* region = reinterpret_cast<RGNDATA*>(bytes.data());
  region->rdh = {
      sizeof(RGNDATAHEADER), RDH_RECTANGLES, static_cast<DWORD>(count), 0, {0, 0, kWidth, kHeight}};
  auto* rects = reinterpret_cast<RECT*>(region->Buffer);
  for (int i = 0; i < count; ++i) {
    const int x = i % 1000 * 5;
    const int y = i / 1000 * 6;
    rects[i] = {x, y, x + 3, y + 4};
  }
  const HRGN clip = ExtCreateRegion(nullptr, static_cast<DWORD>(bytes.size()), region);
  SelectClipRgn(dc, clip);
  DeleteObject(clip);
  Ellipse(dc, 0, 0, kWidth, kHeight);
}

/// A picture of the whole page, of so many rows of pixels as wide as the page's.
void DrawPicture(HDC dc, int rows) {
  BITMAPINFO info{};
  info.bmiHeader = {sizeof(BITMAPINFOHEADER), kWidth, rows, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
  std::vector<BYTE> bits(static_cast<size_t>(kWidth) * 3 * static_cast<size_t>(rows));
  for (size_t i = 0; i < bits.size(); ++i)
    bits[i] = static_cast<BYTE>(Scattered(static_cast<int>(i), 256));
  StretchDIBits(dc, 0, 0, kWidth, kHeight, 0, 0, kWidth, rows, bits.data(), &info, DIB_RGB_COLORS,
                SRCCOPY);
}

struct Series {
  std::string_view name;
  void (*draw)(HDC dc, int count);
};
constexpr Series kSeries[] = {
    {"lines", DrawLines}, {"points", DrawPolyline}, {"texts", DrawText},
    {"fonts", DrawFonts}, {"clips", DrawClipped},   {"picture", DrawPicture},
};

bool WritePages(int count, const char* path) {
  std::ofstream file(path, std::ios::binary);
  for (int page = 0; page < count; ++page) {
    for (int line = 0; line < 60; ++line) file << "Line " << line << " of page " << page << ".\n";
    file << '\f';
  }
  return static_cast<bool>(file.flush());
}

bool WriteMetafile(const Series& series, int count, const char* path) {
  const HDC screen = GetDC(nullptr);
  const RECT frame = {0, 0, MulDiv(kWidth, 2540, 600), MulDiv(kHeight, 2540, 600)};
  const HDC dc = CreateEnhMetaFileA(screen, path, &frame, nullptr);
  if (dc == nullptr) return false;
  SetMapMode(dc, MM_ANISOTROPIC);
  SetWindowExtEx(dc, 600, 600, nullptr);
  SetViewportExtEx(dc, GetDeviceCaps(dc, LOGPIXELSX), GetDeviceCaps(dc, LOGPIXELSY), nullptr);
  series.draw(dc, count);
  const HENHMETAFILE made = CloseEnhMetaFile(dc);
  DeleteEnhMetaFile(made);
  return made != nullptr;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) return 2;
  const int count = std::atoi(argv[2]);
  if (count <= 0) return 2;
  if (argv[1] == std::string_view("pages")) return WritePages(count, argv[3]) ? 0 : 1;
  for (const Series& series : kSeries) {
    if (series.name == argv[1]) return WriteMetafile(series, count, argv[3]) ? 0 : 1;
  }
  std::fprintf(stderr, "growth_input: no series %s\n", argv[1]);
  return 2;
}
