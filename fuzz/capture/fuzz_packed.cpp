// Record streams of any bytes: framing, and the packed bitmaps that payloads hold; and surfaces of
// any size, packed and read back.
#include <cstdlib>
#include <vector>

#include "capture/records/framing.h"
#include "capture/records/packed_bitmap.h"
#include "capture/records/packed_dib.h"
#include "platform/input.h"

namespace quillo::records {
namespace {

void Check(bool holds) {
  if (!holds) std::abort();
}

/// Reads both ends of a block, so that the sanitizer sees where it lies.
void Touch(Bytes bytes) {
  if (bytes.empty()) return;
  volatile std::byte seen = bytes.front();
  seen = bytes.back();
  (void)seen;
}

void TryDib(Bytes payload, size_t offset) {
  const auto dib = LocatePackedDib(payload, offset);
  if (!dib) return;
  Touch(dib->bits);
  Check(dib->bits.data() >= payload.data() &&
        dib->bits.data() + dib->bits.size() <= payload.data() + payload.size());
  if (dib->info.header.compression == kDibRgb) {
    Check(dib->bits.size() == DibBitsBytes(dib->info.header));
  }
}

void TryStream(Bytes stream) {
  while (const auto frame = NextFrame(stream)) {
    const std::vector<std::byte> payload(frame->payload.begin(), frame->payload.end());
    for (size_t offset = 0; offset < 128; offset += 4) TryDib(payload, offset);
    stream = stream.subspan(frame->size);
  }
}

void TrySurface(fuzz::Input& input) {
  const auto format = FindSurfaceFormat(input.Take<uint8_t>() % 12);
  const auto row_size = input.Take<uint16_t>() % 300u, rows = input.Take<uint8_t>() % 64u;
  const bool top_down = input.Take<uint8_t>() % 2 != 0;
  const Bytes given = input.TakeBytes(input.Take<uint16_t>());
  const std::vector<std::byte> bits(given.begin(), given.end());
  const SurfaceBits surface = {bits, row_size, rows, top_down};
  std::vector<std::byte> packed;
  ForEachPiece(surface,
               [&](Bytes piece) { packed.insert(packed.end(), piece.begin(), piece.end()); });
  Check(packed.size() == surface.Size());
  if (!format) return;
  Check(PackedSize(*format, surface.Size()) == PackedBitsOffset(format->bit_count) + packed.size());
  const DibInfo head = MakePackedHead(*format, input.Take<int32_t>(), input.Take<int32_t>(),
                                      {input.Take<uint32_t>() % 5000, 0});
  const Bytes head_bytes = PackedHeadBytes(head);
  packed.insert(packed.begin(), head_bytes.begin(), head_bytes.end());
  TryDib(packed, 0);
}

}  // namespace
}  // namespace quillo::records

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  quillo::fuzz::Input input(std::as_bytes(std::span(data, size)));
  if (input.Take<uint8_t>() % 2 == 0) {
    quillo::records::TryStream(std::as_bytes(std::span(data, size)).subspan(size != 0));
  } else {
    quillo::records::TrySurface(input);
  }
  return 0;
}
