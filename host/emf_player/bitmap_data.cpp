#include "host/emf_player/bitmap_data.h"

#include <algorithm>
#include <utility>

#include "host/pictures/dib_source.h"
#include "host/pictures/picture_decoder.h"

namespace quillo::host::emf {

namespace {

/// Counts what a picture makes on the page beyond the bytes that the record brought; false when the
/// file has asked for too much.
bool SpendOnDecoding(Playback& dc, const BitmapSource& bitmap, size_t brought) {
  constexpr double kPageBytesPerPixel = 3, kBytesPerPoint = 8;
  const double made = kPageBytesPerPixel * bitmap.width * bitmap.height;
  return dc.Spend(std::max(0.0, made - static_cast<double>(brought)) / kBytesPerPoint);
}

}  // namespace

DibPlace ReadDibPlace(PayloadReader& record) {
  DibPlace place;
  place.info_offset = record.Read<uint32_t>();
  place.info_size = record.Read<uint32_t>();
  place.bits_offset = record.Read<uint32_t>();
  place.bits_size = record.Read<uint32_t>();
  return place;
}

std::shared_ptr<const BitmapSource> ReadBitmap(Playback& dc, PayloadReader& record,
                                               const DibPlace& place, uint32_t colors,
                                               uint32_t rows) {
  const Bytes info = record.Slice(place.info_offset, place.info_size);
  const Bytes bits = record.Slice(place.bits_offset, place.bits_size);
  if (!record.ok()) return nullptr;
  std::string what;
  const auto dib =
      ParseDib(info, bits, static_cast<DibColors>(colors), rows, dc.state().palette->colors, what);
  if (!dib) {
    dc.Fault(std::move(what));
    return nullptr;
  }
  try {
    auto bitmap = std::make_shared<const BitmapSource>(SourceOf(*dib));
    const bool decoded = dib->coding != Dib::Coding::kPlain;
    if (decoded && !SpendOnDecoding(dc, *bitmap, bits.size())) return nullptr;
    return bitmap;
  } catch (const UnreadablePicture& refused) {
    dc.Fault(std::string("its picture ") + refused.what());
    return nullptr;
  }
}

}  // namespace quillo::host::emf
