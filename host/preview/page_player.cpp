#include "host/preview/page_player.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>
#include <utility>
#include <vector>

#include "base/arithmetic.h"
#include "host/base/platform.h"
#include "host/preview/text_record.h"
#include "host/preview/wide_lines.h"

namespace quillo::host {

namespace {

/// Pixels of the enlarged part of one blit, and of all enlarged parts on a page. Blits beyond the
/// limits are played without it.
constexpr double kMaxPixels = 1 << 24;
constexpr double kMaxPixelsOfPage = 1 << 29;

/// A part of the sheet that is drawn larger.
struct Enlargement {
  RECT part;   // of the sheet, pixels
  int factor;  // pixels on each side for one of the sheet

  /// From pixels of the sheet to those of the enlarged part.
  XFORM Transform() const {
    const auto scale = static_cast<FLOAT>(factor);
    const auto x = static_cast<FLOAT>(part.left), y = static_cast<FLOAT>(part.top);
    return {scale, 0, 0, scale, -scale * x, -scale * y};
  }
};

SIZE SizeOf(const RECT& rect) { return {rect.right - rect.left, rect.bottom - rect.top}; }

/// Whether a record is a blit with a source. They all begin with the same fields.
bool IsBlit(const ENHMETARECORD& record) {
  switch (record.iType) {
    case EMR_BITBLT:
    case EMR_STRETCHBLT:
    case EMR_MASKBLT:
    case EMR_ALPHABLEND:
    case EMR_TRANSPARENTBLT:
      return record.nSize >= sizeof(EMRBITBLT) &&
             reinterpret_cast<const EMRBITBLT&>(record).cbBitsSrc != 0;
    default:
      return false;
  }
}

/// Copies what the sheet has of a part, each pixel as a square of `factor`.
void Enlarge(SheetBitmap& sheet, const Enlargement& by, SheetBitmap& enlarged) {
  const RECT area = sheet.Part(by.part);
  for (LONG y = area.top; y < area.bottom; ++y) {
    const LONG row = (y - by.part.top) * by.factor;
    std::byte* to = enlarged.At((area.left - by.part.left) * by.factor, row);
    for (LONG x = area.left; x < area.right; ++x) {
      for (int copy = 0; copy < by.factor; ++copy) to = std::copy_n(sheet.At(x, y), 3, to);
    }
    for (int copy = 1; copy < by.factor; ++copy) {
      std::copy_n(enlarged.At(0, row), enlarged.Stride(), enlarged.At(0, row + copy));
    }
  }
}

/// Puts an area of the sheet back, each pixel as the average of its square.
void Average(SheetBitmap& enlarged, const Enlargement& by, const RECT& area, SheetBitmap& sheet) {
  const SIZE size = SizeOf(area);
  const POINT first = {(area.left - by.part.left) * by.factor,
                       (area.top - by.part.top) * by.factor};
  const auto square = static_cast<unsigned>(by.factor * by.factor);
  std::vector<unsigned> sums;  // of a row
  for (LONG y = 0; y < size.cy; ++y) {
    sums.assign(static_cast<size_t>(size.cx) * 3, square / 2);
    for (int row = 0; row < by.factor; ++row) {
      const std::byte* at = enlarged.At(first.x, first.y + y * by.factor + row);
      for (size_t pixel = 0; pixel < sums.size(); pixel += 3) {
        for (int column = 0; column < by.factor; ++column) {
          for (size_t channel = 0; channel < 3; ++channel) {
            sums[pixel + channel] += std::to_integer<unsigned>(*at++);
          }
        }
      }
    }
    std::transform(sums.begin(), sums.end(), sheet.At(area.left, area.top + y),
                   [square](unsigned sum) { return static_cast<std::byte>(sum / square); });
  }
}

/// Pixels of the sheet for one dot of the page, for both sides alike.
double ScaleOf(HDC dc) {
  XFORM transform;
  if (!GetWorldTransform(dc, &transform)) return 1;
  return std::sqrt(std::abs(static_cast<double>(transform.eM11) * transform.eM22 -
                            static_cast<double>(transform.eM12) * transform.eM21));
}

/// The dashes and gaps of a pen in whole pixels: as often as a pen has room for, so that what is
/// rounded off does not add up along a line. Throws std::bad_alloc.
std::vector<DWORD> InPixels(const std::vector<DWORD>& lengths, double scale) {
  constexpr size_t kRoom = 16;  // of ExtCreatePen
  const size_t count = lengths.size() * (lengths.size() > kRoom ? 1 : kRoom / lengths.size());
  std::vector<DWORD> pixels(count);
  double end = 0, end_in_pixels = 0;
  for (size_t i = 0; i < count; ++i) {
    end += lengths[i % lengths.size()] * scale;
    const double length = std::clamp(std::round(end - end_in_pixels), 1.0, 4294967295.0);
    end_in_pixels += length;
    pixels[i] = static_cast<DWORD>(length);
  }
  return pixels;
}

class PagePlayer {
 public:
  PagePlayer(HDC dc, SheetBitmap& sheet, std::vector<bool> stroked_paths)
      : dc_(dc),
        sheet_(sheet),
        wide_lines_(sheet),
        stroked_(std::move(stroked_paths)),
        path_(stroked_.begin()) {}

  void Play(HANDLETABLE& handles, const ENHMETARECORD& record, UINT handle_count) {
    if (record.iType == EMR_HEADER) SetStretchBltMode(dc_, HALFTONE);
    if (record.iType == EMR_SETSTRETCHBLTMODE) return;
    if (record.iType == EMR_BEGINPATH) moved_ = path_ != stroked_.end() && *path_++;
    if (moved_ && (record.iType == EMR_BEGINPATH || record.iType == EMR_ENDPATH)) {
      // A line leads through the middle of a dot. GDI draws it through that of a pixel.
      const auto to_middle = static_cast<FLOAT>((std::min(ScaleOf(dc_), 1.0) - 1) / 2);
      MoveBy(record.iType == EMR_BEGINPATH ? to_middle : -to_middle);
    }
    try {
      if (under_wine_ && PlayForWine(handles, record, handle_count)) return;
    } catch (const std::bad_alloc&) {  // left to Wine
    }
    PlayEnhMetaFileRecord(dc_, &handles, &record, handle_count);
  }

 private:
  /// Plays the records that Wine plays differently from Windows; false for the rest.
  bool PlayForWine(HANDLETABLE& handles, const ENHMETARECORD& record, UINT handle_count) {
    switch (record.iType) {
      case EMR_SETMITERLIMIT:  // an integer, which Wine takes for a float
        return SetMiterLimit(dc_, static_cast<FLOAT>(record.dParm[0]), nullptr) != FALSE;
      case EMR_EXTCREATEPEN:
        return CreatePen(handles, record, handle_count);
      case EMR_EXTTEXTOUTW:
        return PlayPair(handles, record, handle_count);
      case EMR_STROKEPATH:
        return wide_lines_.Draw(dc_, ScaleOf(dc_));
      default:
        return IsBlit(record) && PlayEnlarged(handles, record, handle_count);
    }
  }

  /// Creates an extended pen. Wine looks for its fields where 64-bit structures would have them,
  /// leaves patterns out, and takes the lengths of dashes for pixels.
  bool CreatePen(HANDLETABLE& handles, const ENHMETARECORD& record, UINT handle_count) const {
    const Bytes whole(reinterpret_cast<const std::byte*>(&record), record.nSize);
    const auto index = LoadOrZero<DWORD>(whole, 8);
    const size_t info_at = LoadOrZero<DWORD>(whole, 12);
    const auto count = LoadOrZero<DWORD>(whole, 48);
    constexpr size_t kEntries = 52;
    if (index >= handle_count || !RangeFits(whole.size(), kEntries, size_t{count} * 4) ||
        !RangeFits(whole.size(), info_at, 0)) {
      return false;
    }
    LOGBRUSH brush = {LoadOrZero<DWORD>(whole, 36), LoadOrZero<DWORD>(whole, 40),
                      LoadOrZero<DWORD>(whole, 44)};
    if (brush.lbStyle == BS_DIBPATTERNPT) {  // whose bits follow the colours
      brush.lbHatch = reinterpret_cast<ULONG_PTR>(whole.data() + info_at);
    }
    const auto style = LoadOrZero<DWORD>(whole, 28);
    std::vector<DWORD> lengths(count);
    if (count != 0) std::memcpy(lengths.data(), whole.data() + kEntries, size_t{count} * 4);
    if ((style & PS_GEOMETRIC) != 0 && count != 0) lengths = InPixels(lengths, ScaleOf(dc_));
    handles.objectHandle[index] =
        ExtCreatePen(style, LoadOrZero<DWORD>(whole, 32), &brush,
                     static_cast<DWORD>(lengths.size()), count == 0 ? nullptr : lengths.data());
    return handles.objectHandle[index] != nullptr;
  }

  /// Plays a text record of one character above U+FFFF; false for other text.
  bool PlayPair(HANDLETABLE& handles, const ENHMETARECORD& record, UINT handle_count) const {
    const std::vector<std::byte> glyph = WithGlyphOfPair(dc_, record);
    return !glyph.empty() &&
           PlayEnhMetaFileRecord(dc_, &handles,
                                 reinterpret_cast<const ENHMETARECORD*>(glyph.data()),
                                 handle_count) != FALSE;
  }

  /// What a blit may touch, and the factor at which every dot of the page is at least a pixel;
  /// 0 where that takes too much memory.
  Enlargement EnlargementOf(const EMRBITBLT& blit) const {
    LONG far_x = 0, far_y = 0;
    if (__builtin_add_overflow(blit.xDest, blit.cxDest, &far_x) ||
        __builtin_add_overflow(blit.yDest, blit.cyDest, &far_y)) {
      return {};
    }
    POINT corners[] = {
        {blit.xDest, blit.yDest}, {far_x, blit.yDest}, {blit.xDest, far_y}, {far_x, far_y}};
    if (!LPtoDP(dc_, corners, 4)) return {};
    const auto [left, right] = std::ranges::minmax(corners, {}, &POINT::x);
    const auto [top, bottom] = std::ranges::minmax(corners, {}, &POINT::y);
    const SIZE sheet = sheet_.Size();
    Enlargement result{};
    for (const LONG sheets : {1L, 0L}) {  // so many of them beyond each edge
      const SIZE beyond = {sheets * sheet.cx, sheets * sheet.cy};
      // One pixel more on each side, for rounding.
      result.part = {std::max(left.x, 1 - beyond.cx) - 1, std::max(top.y, 1 - beyond.cy) - 1,
                     std::min(right.x, sheet.cx + beyond.cx - 2) + 2,
                     std::min(bottom.y, sheet.cy + beyond.cy - 2) + 2};
      const SIZE part = SizeOf(result.part);
      if (part.cx <= 0 || part.cy <= 0) return {};
      const double pixels = static_cast<double>(part.cx) * part.cy;
      result.factor = static_cast<int>(
          std::min(std::ceil(1 / std::max(ScaleOf(dc_), 0.01)), std::sqrt(kMaxPixels / pixels)));
      if (result.factor >= 1) break;
    }
    return result;
  }

  /// Plays a blit onto an enlarged copy of the part of the sheet that it touches, without the clip
  /// and beyond the sheet: Wine distorts a picture that is cut. False when it is to be played
  /// without.
  bool PlayEnlarged(HANDLETABLE& handles, const ENHMETARECORD& record, UINT handle_count) {
    const Enlargement by = EnlargementOf(reinterpret_cast<const EMRBITBLT&>(record));
    if (by.factor < 1) return false;
    const std::vector<RECT> areas = sheet_.Visible(dc_, by.part);
    if (areas.empty()) return true;
    const SIZE part = SizeOf(by.part);
    const SIZE size = {part.cx * by.factor, part.cy * by.factor};
    pixels_ += static_cast<double>(size.cx) * size.cy;
    if (pixels_ > kMaxPixelsOfPage) return false;
    SheetBitmap enlarged(size);
    if (!enlarged) return false;
    GdiFlush();
    Enlarge(sheet_, by, enlarged);

    const int saved = SaveDC(dc_);
    SelectObject(dc_, enlarged.Handle());
    SelectClipRgn(dc_, nullptr);
    const XFORM enlarge = by.Transform();
    ModifyWorldTransform(dc_, &enlarge, MWT_RIGHTMULTIPLY);
    PlayEnhMetaFileRecord(dc_, &handles, &record, handle_count);
    GdiFlush();
    RestoreDC(dc_, saved);
    SelectObject(dc_, sheet_.Handle());
    for (const RECT& area : areas) Average(enlarged, by, area, sheet_);
    return true;
  }

  /// Pixels to the right and down, for what is played from here on.
  void MoveBy(FLOAT pixels) const {
    const XFORM move = {1, 0, 0, 1, pixels, pixels};
    ModifyWorldTransform(dc_, &move, MWT_RIGHTMULTIPLY);
  }

  HDC dc_;
  SheetBitmap& sheet_;
  WideLines wide_lines_;
  const std::vector<bool> stroked_;         // of each path of the page
  std::vector<bool>::const_iterator path_;  // of the next one
  bool moved_ = false;                      // whether this path is
  const bool under_wine_ = RunsUnderWine();
  double pixels_ = 0;  // drawn enlarged so far
};

int CALLBACK NoteStrokedPath(HDC, HANDLETABLE*, const ENHMETARECORD* record, int, LPARAM paths) {
  auto& stroked = *reinterpret_cast<std::vector<bool>*>(paths);
  switch (record->iType) {
    case EMR_BEGINPATH:
      try {
        stroked.push_back(false);
      } catch (const std::bad_alloc&) {
        return 0;  // later lines stay where GDI draws them
      }
      break;
    case EMR_STROKEPATH:
    case EMR_STROKEANDFILLPATH:
      if (!stroked.empty()) stroked.back() = true;
      break;
    default:
      break;
  }
  return 1;
}

/// Whether lines are drawn, for each path of a page.
std::vector<bool> StrokedPaths(HENHMETAFILE page) {
  std::vector<bool> stroked;
  EnumEnhMetaFile(nullptr, page, NoteStrokedPath, &stroked, nullptr);
  return stroked;
}

int CALLBACK PlayRecord(HDC, HANDLETABLE* handles, const ENHMETARECORD* record, int count,
                        LPARAM player) {
  reinterpret_cast<PagePlayer*>(player)->Play(*handles, *record, static_cast<UINT>(count));
  return 1;
}

}  // namespace

bool PlayPage(HENHMETAFILE page, SheetBitmap& sheet) {
  const CreatedDc dc(CreateCompatibleDC(nullptr));
  if (!dc) return false;
  const SelectScope drawn_on(dc.Get(), sheet.Handle());
  const RECT whole{0, 0, sheet.Size().cx, sheet.Size().cy};
  PagePlayer player(dc.Get(), sheet, StrokedPaths(page));
  // The result, FALSE as soon as one record fails, is no reason to give up the page.
  EnumEnhMetaFile(dc.Get(), page, PlayRecord, &player, &whole);
  GdiFlush();
  return true;
}

}  // namespace quillo::host
