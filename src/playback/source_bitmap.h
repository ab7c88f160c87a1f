#pragma once

#include "base/windows.h"

#include "base/bytes.h"
#include "imaging/lifecycle/create.h"
#include "imaging/lifecycle/dib_section.h"
#include "playback/context.h"

namespace quillo {

/// Whether a page may still hold the pixels of a source; counts those of run-length ones.
bool TakePixels(PlaybackContext& context, const records::DibHeader& header);

/// The source of a blit: a record's bitmap in the imaging kernel, and the memory DC that shows it.
class SourceBitmap {
 public:
  /// Takes the packed DIB that begins `offset` bytes into `payload`. False when there is none, it
  /// cannot be converted, or the page may not hold it.
  bool Load(PlaybackContext& context, Bytes payload, uint32_t offset);

  /// Brings the bitmap to the limits. False when that fails; the bitmap is then unusable.
  bool Reduce(BitmapLimits limits);

  /// The DC to blit from, or null. Valid as long as this object.
  HDC Present();

  /// A coordinate or length of the bitmap as the record has it, in the bitmap as it is now.
  [[nodiscard]] int Scaled(int value) const {
    return MulDiv(value, scale_.numerator, scale_.denominator);
  }

 private:
  imaging::BitmapScope bitmap_;
  imaging::DibSectionDc dc_;  // of bitmap_, so it goes first
  ReductionScale scale_;
};

}  // namespace quillo
