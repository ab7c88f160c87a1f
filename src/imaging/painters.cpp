#include "imaging/painters.h"

#include <cstdlib>

#include "base/kernel_owners.h"
#include "imaging/device_colours.h"
#include "imaging/dib_section.h"
#include "imaging/perspective.h"
#include "imaging/resize.h"
#include "imaging/rows.h"
#include "imaging/storage_choice.h"

namespace quillo::imaging {
namespace {

/// What every painting starts from.
constexpr struct {
  int stretch_mode = COLORONCOLOR;          // GDI's own scaling
  uint32_t memory_type = kSectionElseDisk;  // of copies: GDI must be able to show them
} kPaintSettings;

/// Puts the DC's stretch mode back at the end of the scope.
class StretchModeScope {
 public:
  explicit StretchModeScope(HDC dc)
      : dc_(dc), mode_(SetStretchBltMode(dc, kPaintSettings.stretch_mode)) {}
  ~StretchModeScope() {
    if (mode_ != 0) SetStretchBltMode(dc_, mode_);
  }
  StretchModeScope(const StretchModeScope&) = delete;
  StretchModeScope& operator=(const StretchModeScope&) = delete;

 private:
  HDC dc_;
  int mode_;
};

struct Size {
  LONG width;
  LONG height;
  friend bool operator==(Size, Size) = default;
};

Size SizeOf(const RECT& rectangle) {
  return {rectangle.right - rectangle.left, rectangle.bottom - rectangle.top};
}

/// Draws a part of a presented bitmap over the whole destination.
int Blit(const PaintJob& job, const DibSectionDc& shown, const RECT& part) {
  if (!shown) return kOutOfMemory;
  const Size from = SizeOf(part);
  const Size to = SizeOf(job.destination);
  const auto [left, top, right, bottom] = job.destination;
  if (from == to) {
    return BitBlt(job.dc, left, top, to.width, to.height, shown.Get(), part.left, part.top,
                  job.raster_operation)
               ? kSuccess
               : kOutOfMemory;
  }
  const StretchModeScope mode(job.dc);
  return StretchBlt(job.dc, left, top, to.width, to.height, shown.Get(), part.left, part.top,
                    from.width, from.height, job.raster_operation)
             ? kSuccess
             : kOutOfMemory;
}

int BlitWhole(const PaintJob& job, BitmapHandle& bitmap) {
  const DibSectionDc shown(PresentAsDibSection(&bitmap));
  return Blit(job, shown,
              {0, 0, static_cast<LONG>(bitmap.width), static_cast<LONG>(bitmap.height)});
}

/// The part of a bitmap that a job paints, row by row from the top.
class SourceRows {
 public:
  SourceRows(const PaintJob& job, const BitmapHandle& bitmap)
      : bitmap_(bitmap), area_(job.source), scratch_(bitmap.bytes_per_line) {}

  explicit operator bool() const { return static_cast<bool>(scratch_); }
  [[nodiscard]] uint32_t Left() const { return static_cast<uint32_t>(area_.left); }
  [[nodiscard]] uint32_t Width() const { return static_cast<uint32_t>(SizeOf(area_).width); }
  [[nodiscard]] uint32_t Height() const { return static_cast<uint32_t>(SizeOf(area_).height); }

  /// The whole bitmap row that is seen as row `y` of the part; null when it cannot be read.
  [[nodiscard]] const std::byte* Fetch(uint32_t y) const {
    const uint32_t seen = static_cast<uint32_t>(area_.top) + y;
    const bool bottom_up = bitmap_.view_perspective == kBottomRowFirst;
    return BorrowRow(bitmap_, bottom_up ? bitmap_.height - 1 - seen : seen,
                     {scratch_.As<std::byte>(), bitmap_.bytes_per_line});
  }

 private:
  const BitmapHandle& bitmap_;
  RECT area_;
  HeapBlock scratch_;
};

/// Makes a bitmap that GDI can show, top row first; `palette` may be null.
int MakeCopy(uint32_t width, uint32_t height, uint32_t bits, const PaletteEntry* palette,
             BitmapHandle* copy) {
  return Create(copy, kCurrentForm, kPaintSettings.memory_type, width, height, bits,
                bits <= 8 ? kOrderPalette : kOrderColour, palette, kTopRowFirst, nullptr, 0);
}

/// Copies the part that the job paints into `copy`: grey bitmaps as 8-bit levels of the bitmap's
/// lookup table, all others in 24 bits.
int CopyConverted(const PaintJob& job, const BitmapHandle& bitmap, bool as_grey,
                  BitmapHandle* copy) {
  const SourceRows rows(job, bitmap);
  PaletteEntry greys[256];
  FillLookupPalette(bitmap, greys);
  int result = MakeCopy(rows.Width(), rows.Height(), as_grey ? 8 : 24, greys, copy);
  if (result != kSuccess) return result;
  const HeapBlock colours(size_t{rows.Width()} * sizeof(Colour16));
  const HeapBlock line(copy->bytes_per_line);
  if (!rows || !colours || !line) return kOutOfMemory;
  const std::span<Colour16> decoded(colours.As<Colour16>(), rows.Width());
  auto* out = line.As<std::byte>();
  for (uint32_t y = 0; y < rows.Height() && result == kSuccess; ++y) {
    const std::byte* row = rows.Fetch(y);
    if (row == nullptr) return kFileError;
    DecodeRow(FormatOf(bitmap), row, rows.Left(), decoded);
    if (as_grey) {
      for (uint32_t x = 0; x < rows.Width(); ++x)
        out[x] = static_cast<std::byte>(decoded[x].red >> 8);
    } else {
      EncodeRow(FormatOf(*copy), decoded, out);
    }
    result = StoreRow(*copy, y, {out, copy->bytes_per_line});
  }
  return result;
}

int PaintConverted(const PaintJob& job, const BitmapHandle& bitmap) {
  const bool as_grey = bitmap.bits_per_pixel > 8 && IsGrey(FormatOf(bitmap));
  BitmapScope copy;
  const int result = CopyConverted(job, bitmap, as_grey, copy.Get());
  return result == kSuccess ? BlitWhole(job, *copy.Get()) : result;
}

/// A bitmap that cannot be shown to GDI as it is gets converted all the same.
int PaintAsIs(const PaintJob& job, BitmapHandle& bitmap) {
  const DibSectionDc shown(PresentAsDibSection(&bitmap));
  return shown ? Blit(job, shown, job.source) : PaintConverted(job, bitmap);
}

}  // namespace

int RunPainter(const PaintJob& job, BitmapHandle& record) {
  if (record.view_perspective != kTopRowFirst && record.view_perspective != kBottomRowFirst) {
    BitmapScope upright;
    const int result = MakeUpright(record, upright.Get());
    return result == kSuccess ? RunPainter(job, *upright.Get()) : result;
  }
  if (job.method == PaintMethod::kConvert) return PaintConverted(job, record);
  return PaintAsIs(job, record);
}

}  // namespace quillo::imaging
