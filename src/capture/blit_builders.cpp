#include "capture/blit_builders.h"

#include "base/arithmetic.h"
#include "capture/builders.h"
#include "capture/packed_surface.h"
#include "capture/records/framing.h"

namespace quillo {
namespace {

using namespace records;

enum class UnpackedSource { kZeros, kDropsRecord };

bool Pack(const DEVICE_PDEV& device, const BlitSource& source, MutableBytes place) {
  auto size = static_cast<uint32_t>(place.size());
  return SurfaceToPackedBitmap(&device, source.surface, source.translation, place.data(), size);
}

/// A record of a fixed part and one packed bitmap.
template <typename Payload>
void EmitBlit(DEVICE_PDEV& device, RecordType type, Payload& blit, const BlitSource& source,
              UnpackedSource rule) {
  const uint32_t source_size = PackedBitmapSize(source.surface);
  if (source_size == 0) return;
  blit.source_offset = sizeof blit;
  const PayloadBlock block(CheckedAdd(blit.source_offset, source_size));
  if (!block) return;
  Store(block.Content(), 0, blit);
  const bool packed = Pack(device, source, block.Content().subspan(blit.source_offset));
  if (packed || rule == UnpackedSource::kZeros) block.Emit(device, type);
}

}  // namespace

void EmitBitBlt(DEVICE_PDEV& device, BitBltPayload blit, const BlitSource& source) {
  EmitBlit(device, REC_BITBLT, blit, source, UnpackedSource::kZeros);
}

void EmitSetDibitsToDevice(DEVICE_PDEV& device, SetDibitsPayload blit, const BlitSource& source) {
  EmitBlit(device, REC_SETDIBITSTODEVICE, blit, source, UnpackedSource::kZeros);
}

void EmitAlphaBlend(DEVICE_PDEV& device, AlphaBlendPayload blit, const BlitSource& source) {
  EmitBlit(device, REC_ALPHABLEND, blit, source, UnpackedSource::kDropsRecord);
}

void EmitMaskBlt(DEVICE_PDEV& device, MaskBltPayload blit, const BlitSource& source,
                 const SURFOBJ* mask) {
  const uint32_t source_size = PackedBitmapSize(source.surface);
  const uint32_t mask_size = PackedBitmapSize(mask);
  if (source_size == 0 || mask_size == 0) return;
  blit.source_offset = sizeof blit;
  const auto mask_offset = CheckedAdd(blit.source_offset, source_size);
  if (!mask_offset) return;
  blit.mask_offset = *mask_offset;
  const PayloadBlock block(CheckedAdd(*mask_offset, mask_size));
  if (!block) return;

  const MutableBytes payload = block.Content();
  Store(payload, 0, blit);
  if (Pack(device, source, payload.subspan(blit.source_offset, source_size)) &&
      Pack(device, {mask, nullptr}, payload.subspan(blit.mask_offset))) {
    block.Emit(device, REC_MASKBLT);
  }
}

void EmitStretchBlt(DEVICE_PDEV& device, StretchBltPayload blit, const BlitSource& source) {
  if (!CanBePacked(source.surface)) return;
  blit.source_offset = sizeof blit;
  const auto size = CheckedAdd(blit.source_offset, PackedBitmapSize(source.surface));
  if (!size) return;
  const RecordHeader header = {REC_STRETCHBLT, *size};
  EmitBytes(device, &header, sizeof header);
  EmitBytes(device, &blit, sizeof blit);
  EmitPackedBitmap(device, *source.surface, source.translation);
}

}  // namespace quillo
