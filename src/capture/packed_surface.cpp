#include "capture/packed_surface.h"

#include <algorithm>
#include <cstring>

#include "capture/records/conversions.h"
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

/// Whether the zeros that stand for missing rows of a top-down surface are no more than what is
/// there (of a surface without bits: than its size) and a row: its row size is anybody's number.
bool HasBoundedZeros(const SURFOBJ& surface, const SurfaceBits& bits, uint16_t bit_count) {
  constexpr uint64_t kMaxRow = 1 << 20;
  const uint64_t rows =
      DibStride(static_cast<uint32_t>(surface.sizlBitmap.cx), bit_count) * bits.row_count;
  return bits.Size() - bits.bits.size() <=
         (surface.pvBits != nullptr ? bits.bits.size() : rows) + kMaxRow;
}

/// The translation vector unchanged, else the source palette with red and blue exchanged.
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

PackedSurface::PackedSurface(const SURFOBJ* surface, XLATEOBJ* translation)
    : surface_(surface), translation_(translation) {
  if (surface == nullptr) return;
  format_ = FindSurfaceFormat(surface->iBitmapFormat);
  const SIZEL size = surface->sizlBitmap;
  if (!format_ || !HasBoundedPixels(format_->compression, size.cx, size.cy)) return;
  bits_ = BitsOf(*surface);
  if (!HasBoundedZeros(*surface, bits_, format_->bit_count)) return;
  size_ = PackedSize(*format_, bits_.Size()).value_or(0);
}

DibInfo PackedSurface::Head(const DEVICE_PDEV* device) const {
  const DotsPerInch dpi =
      device != nullptr ? DotsPerInch{device->resolution.x, device->resolution.y} : DotsPerInch{};
  const SIZEL size = surface_->sizlBitmap;
  DibInfo head = MakePackedHead(*format_, size.cx, size.cy, dpi);
  if (format_->bit_count > kMaxTableBits) return head;
  if (translation_ != nullptr) {
    FillColourTable(translation_, std::span(head.colours).first(size_t{1} << format_->bit_count));
  } else if (format_->bit_count == 1) {
    SetMaskColours(head);
  }
  return head;
}

bool PackedSurface::Pack(const DEVICE_PDEV* device, MutableBytes place) const {
  if (!HasBits() || place.size() != size_) return false;
  std::byte* out = place.data();
  const auto append = [&out](Bytes piece) {
    std::memcpy(out, piece.data(), piece.size());
    out += piece.size();
  };
  append(PackedHeadBytes(Head(device)));
  ForEachPiece(bits_, append);
  return true;
}

void PackedSurface::Emit(DEVICE_PDEV& device) const {
  const auto emit = [&device](Bytes piece) {
    EmitBytes(device, piece.data(), static_cast<uint32_t>(piece.size()));
  };
  emit(PackedHeadBytes(Head(&device)));
  ForEachPiece(bits_, emit);
}

uint32_t PackedBitmapSize(const SURFOBJ* surface) { return PackedSurface(surface, nullptr).Size(); }

bool SurfaceToPackedBitmap(const DEVICE_PDEV* device, const SURFOBJ* surface, XLATEOBJ* translation,
                           void* destination, uint32_t& size) {
  const PackedSurface packed(surface, translation);
  const uint32_t given = size;
  size = packed.HasBits() ? packed.Size() : 0;
  if (size == 0 || destination == nullptr) return size != 0;
  return packed.Pack(device, {static_cast<std::byte*>(destination), given});
}

}  // namespace quillo
