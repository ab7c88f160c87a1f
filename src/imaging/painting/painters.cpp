#include "imaging/painting/painters.h"

#include <algorithm>
#include <cstdlib>

#include "base/arithmetic.h"
#include "base/system_owners.h"
#include "imaging/lifecycle/create.h"
#include "imaging/lifecycle/dib_section.h"
#include "imaging/lifecycle/upright.h"
#include "imaging/painting/device_colours.h"
#include "imaging/painting/dither.h"
#include "imaging/pixels/pixel_bits.h"
#include "imaging/scaling/area.h"
#include "imaging/scaling/resize.h"
#include "imaging/storage/rows.h"

namespace quillo::imaging {
namespace {

/// Settings of every painting.
constexpr struct {
  int stretch_mode = COLORONCOLOR;                // GDI's own scaling
  uint32_t memory_type = kMemorySectionElseFile;  // of copies: GDI must be able to show them
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
  return {WrappingSubtract(rectangle.right, rectangle.left),
          WrappingSubtract(rectangle.bottom, rectangle.top)};
}

/// Draws a part of a presented bitmap over the whole destination.
int Blit(const PaintJob& job, const DibSectionDc& shown, const RECT& part) {
  if (!shown) return kOutOfMemory;
  const Size from = SizeOf(part);
  const Size to = SizeOf(job.destination);
  const auto [left, top, right, bottom] = job.destination;
  if (from == to) {
    return BitBlt(job.dc, left, top, to.width, to.height, shown.Get().dc, part.left, part.top,
                  job.raster_operation)
               ? kSuccess
               : kOutOfMemory;
  }
  const StretchModeScope mode(job.dc);
  return StretchBlt(job.dc, left, top, to.width, to.height, shown.Get().dc, part.left, part.top,
                    from.width, from.height, job.raster_operation)
             ? kSuccess
             : kOutOfMemory;
}

int BlitWhole(const PaintJob& job, BitmapHandle& bitmap) {
  const DibSectionDc shown = PresentAsDibSection(&bitmap);
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
  return Create(copy, {.memory_type = kPaintSettings.memory_type,
                       .width = width,
                       .height = height,
                       .bits_per_pixel = bits,
                       .colour_order = bits <= 8 ? kOrderPalette : kOrderColour,
                       .palette = palette});
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
  const bool as_grey = IsGrey(FormatOf(bitmap));
  BitmapScope copy;
  const int result = CopyConverted(job, bitmap, as_grey, copy.Get());
  return result == kSuccess ? BlitWhole(job, *copy.Get()) : result;
}

/// A bitmap that GDI cannot show as it is gets converted.
int PaintAsIs(const PaintJob& job, BitmapHandle& bitmap) {
  const DibSectionDc shown = PresentAsDibSection(&bitmap);
  return shown ? Blit(job, shown, job.source) : PaintConverted(job, bitmap);
}

/// Size of the destination, mirrored or not.
Geometry DestinationSize(const PaintJob& job, uint32_t bits) {
  const auto length = [](LONG from, LONG to) {
    return static_cast<uint32_t>(std::llabs(int64_t{to} - from));
  };
  const auto geometry = MakeGeometry(length(job.destination.left, job.destination.right),
                                     length(job.destination.top, job.destination.bottom), bits);
  return geometry.value_or(Geometry{});  // Create refuses what has no pixels
}

/// Scales to the destination's size and dithers there.
int PaintDithered(const PaintJob& job, const BitmapHandle& bitmap) {
  const Geometry size = DestinationSize(job, 24);
  BitmapScope scaled;
  {
    BitmapScope colours;
    int result = CopyConverted(job, bitmap, false, colours.Get());
    if (result == kSuccess) result = MakeCopy(size.width, size.height, 24, nullptr, scaled.Get());
    if (result == kSuccess) result = ResizeInto(colours.Get(), scaled.Get(), 0);
    if (result != kSuccess) return result;
  }
  PaletteEntry palette[256];
  const std::span<const PaletteEntry> device(palette, FillDitherPalette(job.device_depth, palette));
  BitmapScope dithered;
  int result = MakeCopy(size.width, size.height, job.device_depth, palette, dithered.Get());
  if (result != kSuccess) return result;
  const HeapBlock work(DitherWorkSize(size.width));
  const HeapBlock colours(size.bytes_per_line);
  const HeapBlock indexes(dithered->bytes_per_line);
  if (!work || !colours || !indexes) return kOutOfMemory;
  ErrorDiffuser diffuser(device, size.width, {work.As<std::byte>(), DitherWorkSize(size.width)});
  for (uint32_t y = 0; y < size.height && result == kSuccess; ++y) {
    const std::byte* row =
        BorrowRow(*scaled.Get(), y, {colours.As<std::byte>(), size.bytes_per_line});
    if (row == nullptr) return kFileError;
    diffuser.Row(row, job.device_depth, indexes.As<std::byte>());
    result = StoreRow(*dithered.Get(), y, {indexes.As<std::byte>(), dithered->bytes_per_line});
  }
  return result == kSuccess ? BlitWhole(job, *dithered.Get()) : result;
}

/// The part of a 1-bit bitmap that the job paints, with its bits shifted to the start of the row.
class BitRows {
 public:
  explicit BitRows(const PaintJob& job, const BitmapHandle& bitmap)
      : rows_(job, bitmap),
        part_(*MakeGeometry(rows_.Width(), rows_.Height(), 1)),
        scratch_(part_.bytes_per_line) {}

  explicit operator bool() const { return rows_ && scratch_; }
  [[nodiscard]] const Geometry& Part() const { return part_; }

  [[nodiscard]] const std::byte* Fetch(uint32_t y) const {
    const std::byte* row = rows_.Fetch(y);
    if (row == nullptr || rows_.Left() == 0) return row;
    for (uint32_t x = 0; x < part_.width; ++x) {
      StorePixelBits(scratch_.As<std::byte>(), 1, x, LoadPixelBits(row, 1, rows_.Left() + x));
    }
    return scratch_.As<std::byte>();
  }

 private:
  SourceRows rows_;
  Geometry part_;
  HeapBlock scratch_;
};

/// Scales a 1-bit bitmap by `rule` into `copy`, which has the destination's size.
int CopyByArea(const PaintJob& job, const BitmapHandle& bitmap, AreaRule rule, BitmapHandle& copy) {
  const BitRows rows(job, bitmap);
  const HeapBlock sums(size_t{copy.width} * sizeof(uint64_t));
  const HeapBlock line(copy.bytes_per_line);
  if (!rows || !sums || !line) return kOutOfMemory;
  return ScaleByArea({.source = rows.Part(),
                      .destination = GeometryOf(copy),
                      .fetch = [&rows](uint32_t y) { return rows.Fetch(y); },
                      .store = [&copy](uint32_t y, Bytes data) { return StoreRow(copy, y, data); },
                      .row = {line.As<std::byte>(), copy.bytes_per_line},
                      .progress = {nullptr, nullptr, copy.height}},
                     rule, {sums.As<uint64_t>(), copy.width});
}

/// Draws a black and white bitmap in 256 grey levels, those of its lookup table. `variant` 1 means
/// that 1-pixels are black. Where it shrinks both ways, a pixel's level is the share of white in
/// it; else every level is black or white, and GDI repeats the pixels.
int PaintGrey(const PaintJob& job, const BitmapHandle& bitmap, int variant) {
  PaletteEntry greys[256];
  FillLookupPalette(bitmap, greys);
  if (variant == 1) std::ranges::reverse(greys);
  const Size from = SizeOf(job.source);
  const Geometry reduced = DestinationSize(job, 8);
  const bool shrinks = reduced.width < static_cast<uint32_t>(from.width) &&
                       reduced.height < static_cast<uint32_t>(from.height);
  BitmapScope levels;
  int result = shrinks ? MakeCopy(reduced.width, reduced.height, 8, greys, levels.Get())
                       : MakeCopy(static_cast<uint32_t>(from.width),
                                  static_cast<uint32_t>(from.height), 8, greys, levels.Get());
  if (result == kSuccess) result = CopyByArea(job, bitmap, AreaRule::kLevels, *levels.Get());
  return result == kSuccess ? BlitWhole(job, *levels.Get()) : result;
}

/// Draws a black and white bitmap scaled, in its two colours. Where it shrinks, black pixels stay:
/// thin lines and dots do not vanish. `variant` 1 means that 1-pixels are black.
int PaintTwoColours(const PaintJob& job, BitmapHandle& bitmap, int variant) {
  const Geometry size = DestinationSize(job, 1);
  const Size from = SizeOf(job.source);
  const bool shrinks = size.width <= static_cast<uint32_t>(from.width) &&
                       size.height <= static_cast<uint32_t>(from.height);
  if (!shrinks) return PaintAsIs(job, bitmap);
  BitmapScope copy;
  int result = MakeCopy(size.width, size.height, 1, bitmap.palette, copy.Get());
  if (result == kSuccess) {
    const AreaRule rule = variant == 1 ? AreaRule::kAnySet : AreaRule::kAllSet;
    result = CopyByArea(job, bitmap, rule, *copy.Get());
  }
  return result == kSuccess ? BlitWhole(job, *copy.Get()) : result;
}

}  // namespace

int RunPainter(const PaintJob& job, BitmapHandle& record) {
  if (record.view_perspective != kTopRowFirst && record.view_perspective != kBottomRowFirst) {
    BitmapScope upright;
    const int result = MakeUpright(record, upright.Get());
    return result == kSuccess ? RunPainter(job, *upright.Get()) : result;
  }
  const bool scales = SizeOf(job.source) != SizeOf(job.destination);
  switch (job.method) {
    case PaintMethod::kAsIs:
      return PaintAsIs(job, record);
    case PaintMethod::kConvert:
      return PaintConverted(job, record);
    case PaintMethod::kDither:
      return PaintDithered(job, record);
    case PaintMethod::kGreyBlackOnWhite:
      return PaintGrey(job, record, 0);
    case PaintMethod::kGreyWhiteOnBlack:
      return PaintGrey(job, record, 1);
    case PaintMethod::kTwoBlackOnWhite:
      return scales ? PaintTwoColours(job, record, 0) : PaintAsIs(job, record);
    case PaintMethod::kTwoWhiteOnBlack:
      return scales ? PaintTwoColours(job, record, 1) : PaintAsIs(job, record);
  }
  return kInvalidArgument;
}

}  // namespace quillo::imaging
