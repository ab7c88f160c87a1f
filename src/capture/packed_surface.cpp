#include "capture/packed_surface.h"

#include <algorithm>
#include <cstring>

#include "capture/records/conversions.h"
#include "capture/records/packed_bitmap.h"
#include "capture/writer.h"

namespace quillo {
namespace {

using namespace records;

constexpr uint16_t kMaxTableBits = 8;

SurfaceBits BitsOf(const SURFOBJ& surface) {
  const auto delta = static_cast<uint32_t>(surface.lDelta);
  return {.bits = {static_cast<const std::byte*>(surface.pvBits), surface.cjBits},
          .row_size = surface.lDelta < 0 ? 0 - delta : delta,
          .row_count = static_cast<uint32_t>(std::max<LONG>(surface.sizlBitmap.cy, 0)),
          .top_down = (surface.fjBitmap & BMF_TOPDOWN) != 0};
}

/// The translation vector as it stands, else the source palette with red and blue exchanged.
void FillColourTable(XLATEOBJ* translation, std::span<uint32_t> table) {
  const auto vector = TranslationVector(translation);
  if (vector.data() != nullptr) {
    std::copy_n(vector.begin(), std::min(vector.size(), table.size()), table.begin());
    return;
  }
  ULONG palette[256] = {};
  const ULONG count =
      XLATEOBJ_cGetPalette(translation, XO_SRCPALETTE, static_cast<ULONG>(table.size()), palette);
  std::transform(palette, palette + std::min<size_t>(count, table.size()), table.begin(),
                 SwapRedBlue);
}

/// Header and colour table of a surface that can be packed.
DibInfo HeadOf(const DEVICE_PDEV* device, const SURFOBJ& surface, XLATEOBJ* translation) {
  const PixelFormat format = *FindPixelFormat(surface.iBitmapFormat);
  const DotsPerInch dpi =
      device != nullptr ? DotsPerInch{device->resolution.x, device->resolution.y} : DotsPerInch{};
  DibInfo head = MakePackedHead(format, surface.sizlBitmap.cx, surface.sizlBitmap.cy, dpi);
  if (format.bit_count > kMaxTableBits) return head;
  if (translation != nullptr) {
    FillColourTable(translation, std::span(head.colours).first(size_t{1} << format.bit_count));
  } else if (format.bit_count == 1) {
    SetMaskColours(head);
  }
  return head;
}

}  // namespace

std::span<const ULONG> TranslationVector(XLATEOBJ* translation) {
  if (translation == nullptr) return {};
  const ULONG* vector = translation->pulXlate;
  if (vector == nullptr && (translation->flXlate & XO_TABLE) != 0) {
    vector = XLATEOBJ_piVector(translation);
  }
  if (vector == nullptr) return {};
  return {vector, translation->cEntries};
}

uint32_t PackedBitmapSize(const SURFOBJ* surface) {
  if (surface == nullptr) return 0;
  return PackedSize(surface->iBitmapFormat, BitsOf(*surface).Size()).value_or(0);
}

bool CanBePacked(const SURFOBJ* surface) {
  return PackedBitmapSize(surface) != 0 && surface->pvBits != nullptr;
}

bool SurfaceToPackedBitmap(const DEVICE_PDEV* device, const SURFOBJ* surface, XLATEOBJ* translation,
                           void* destination, uint32_t& size) {
  const uint32_t given = size;
  size = CanBePacked(surface) ? PackedBitmapSize(surface) : 0;
  if (size == 0) return false;
  if (destination == nullptr) return true;
  if (given != size) return false;

  auto* out = static_cast<std::byte*>(destination);
  const auto append = [&out](Bytes piece) {
    std::memcpy(out, piece.data(), piece.size());
    out += piece.size();
  };
  append(PackedHeadBytes(HeadOf(device, *surface, translation)));
  ForEachPiece(BitsOf(*surface), append);
  return true;
}

void EmitPackedBitmap(DEVICE_PDEV& device, const SURFOBJ& surface, XLATEOBJ* translation) {
  const auto emit = [&device](Bytes piece) {
    EmitBytes(device, piece.data(), static_cast<uint32_t>(piece.size()));
  };
  emit(PackedHeadBytes(HeadOf(&device, surface, translation)));
  ForEachPiece(BitsOf(surface), emit);
}

}  // namespace quillo
