#include "capture/blit_builders.h"

#include "base/arithmetic.h"
#include "capture/builders.h"
#include "capture/records/framing.h"

namespace quillo {
namespace {

using namespace records;

enum class UnpackedSource { kZeros, kDropsRecord };

/// Emits a record of a fixed part and one packed bitmap.
template <typename Payload>
void EmitBlit(DEVICE_PDEV& device, RecordType type, Payload& blit, const PackedSurface& source,
              UnpackedSource rule) {
  if (source.Size() == 0) return;
  if (!source.HasBits() && rule == UnpackedSource::kDropsRecord) return;
  blit.source_offset = sizeof blit;
  // A picture is large, and fills the payload: the zeros would only be written over.
  const PayloadBlock block(
      CheckedAdd(blit.source_offset, source.Size()),
      source.HasBits() ? PayloadBlock::Fresh::kAnything : PayloadBlock::Fresh::kZeros);
  if (!block) return;
  Store(block.Content(), 0, blit);
  source.Pack(&device, block.Content().subspan(blit.source_offset));
  block.Emit(device, type);
}

}  // namespace

void EmitBitBlt(DEVICE_PDEV& device, BitBltPayload blit, const PackedSurface& source) {
  EmitBlit(device, REC_BITBLT, blit, source, UnpackedSource::kZeros);
}

void EmitSetDibitsToDevice(DEVICE_PDEV& device, SetDibitsPayload blit,
                           const PackedSurface& source) {
  EmitBlit(device, REC_SETDIBITSTODEVICE, blit, source, UnpackedSource::kZeros);
}

void EmitAlphaBlend(DEVICE_PDEV& device, AlphaBlendPayload blit, const PackedSurface& source) {
  EmitBlit(device, REC_ALPHABLEND, blit, source, UnpackedSource::kDropsRecord);
}

void EmitMaskBlt(DEVICE_PDEV& device, MaskBltPayload blit, const PackedSurface& source,
                 const PackedSurface& mask) {
  if (source.Size() == 0 || mask.Size() == 0) return;
  blit.source_offset = sizeof blit;
  const auto mask_offset = CheckedAdd(blit.source_offset, source.Size());
  if (!mask_offset) return;
  blit.mask_offset = *mask_offset;
  const PayloadBlock block(CheckedAdd(*mask_offset, mask.Size()), PayloadBlock::Fresh::kAnything);
  if (!block) return;

  const MutableBytes payload = block.Content();
  Store(payload, 0, blit);
  if (source.Pack(&device, payload.subspan(blit.source_offset, source.Size())) &&
      mask.Pack(&device, payload.subspan(blit.mask_offset))) {
    block.Emit(device, REC_MASKBLT);
  }
}

void EmitStretchBlt(DEVICE_PDEV& device, StretchBltPayload blit, const PackedSurface& source) {
  if (!source.HasBits()) return;
  blit.source_offset = sizeof blit;
  const auto size = CheckedAdd(blit.source_offset, source.Size());
  if (!size) return;
  const RecordHeader header = {REC_STRETCHBLT, *size};
  EmitBytes(device, &header, sizeof header);
  EmitBytes(device, &blit, sizeof blit);
  source.Emit(device);
}

}  // namespace quillo
