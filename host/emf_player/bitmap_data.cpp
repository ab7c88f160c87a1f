#include "host/emf_player/bitmap_data.h"

#include <algorithm>
#include <utility>

#include "host/pictures/dib_source.h"
#include "host/pictures/picture_decoder.h"

namespace quillo::host::emf {

namespace {

/// Counts what a picture adds to the page beyond its `coded` bytes in the record; false when the
/// file has asked for too much.
bool SpendOnDecoding(EmfPlayer& player, const BitmapSource& bitmap, size_t coded) {
  constexpr double kPageBytesPerPixel = 3;
  const double made = kPageBytesPerPixel * bitmap.width * bitmap.height;
  return player.Spend(std::max(0.0, made - static_cast<double>(coded)) / kBytesPerPoint);
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

std::shared_ptr<const BitmapSource> ReadBitmap(EmfPlayer& player, PayloadReader& record,
                                               const DibPlace& place, uint32_t colours,
                                               uint32_t rows) {
  const Bytes info = record.Slice(place.info_offset, place.info_size);
  const Bytes bits = record.Slice(place.bits_offset, place.bits_size);
  if (!record.ok()) return nullptr;
  std::string what;
  const auto dib = ParseDib(info, bits, static_cast<DibColors>(colours), rows,
                            player.state().palette->colours, what);
  if (!dib) {
    player.Fault(std::move(what));
    return nullptr;
  }
  try {
    auto bitmap = std::make_shared<const BitmapSource>(SourceOf(*dib));
    const bool decoded = dib->coding != Dib::Coding::kPlain;
    if (decoded && !SpendOnDecoding(player, *bitmap, bits.size())) return nullptr;
    return bitmap;
  } catch (const UnreadablePicture& refused) {
    player.Fault(std::string("its picture ") + refused.what());
    return nullptr;
  }
}

}  // namespace quillo::host::emf
