#include "capture/builders.h"

#include <utility>

#include "base/arithmetic.h"
#include "base/spare.h"
#include "capture/records/conversions.h"

namespace quillo {
namespace {

using namespace records;

// Bytes. Smaller blocks cost little.
constexpr uint32_t kMinSpareSize = 256 << 10;

struct SparePayload {
  HeapBlock block;
  uint32_t size = 0;
};
Spare<SparePayload> g_spare;

/// Size of a payload of `fixed_size` bytes and `count` elements of type T.
template <typename T>
std::optional<uint32_t> CountedSize(size_t fixed_size, size_t count) {
  const auto elements = CheckedMultiply(count, sizeof(T));
  if (!elements) return std::nullopt;
  const auto size = CheckedAdd(fixed_size, *elements);
  if (!size || *size > UINT32_MAX) return std::nullopt;
  return static_cast<uint32_t>(*size);
}

template <typename T>
void StoreAll(MutableBytes payload, size_t offset, std::span<const T> elements) {
  if (!elements.empty()) {
    std::memcpy(payload.data() + offset, elements.data(), elements.size_bytes());
  }
}

}  // namespace

PayloadBlock::PayloadBlock(std::optional<uint32_t> size, Fresh fresh)
    : size_(size.value_or(0)), capacity_(size_) {
  if (!size) return;
  if (size_ >= kMinSpareSize) {
    SparePayload spare = g_spare.Exchange({});
    if (ServesAsSpare(spare.size, size_)) {
      if (fresh == Fresh::kZeros) std::memset(spare.block.Get(), 0, size_);
      block_ = std::move(spare.block);
      capacity_ = spare.size;
      return;
    }
  }
  block_ = HeapBlock(size_, GetProcessHeap(), fresh == Fresh::kZeros ? HEAP_ZERO_MEMORY : 0);
}

PayloadBlock::~PayloadBlock() {
  if (!block_ || capacity_ < kMinSpareSize || capacity_ > kMaxSpareSize) return;
  g_spare.Exchange({std::move(block_), capacity_});
}

void DropSparePayload() { g_spare.Exchange({}); }

void EmitPolyBezier(DEVICE_PDEV& device, std::span<const Point> points) {
  const PayloadBlock block(CountedSize<Point>(sizeof(PolyPayload), points.size()));
  if (!block) return;
  Store(block.Content(), 0, static_cast<uint32_t>(points.size()));
  StoreAll(block.Content(), kPolyPointsOffset, points);
  block.Emit(device, REC_POLYBEZIER);
}

void EmitExtCreatePen(DEVICE_PDEV& device, uint32_t style, uint32_t width,
                      std::span<const uint32_t> entries) {
  const PayloadBlock block(CountedSize<uint32_t>(sizeof(ExtCreatePenPayload), entries.size()));
  if (!block) return;
  const auto count = static_cast<uint32_t>(entries.size());
  if (count != 0) style |= PS_USERSTYLE;
  Store(block.Content(), 0, ExtCreatePenPayload{style, width, count, 0});
  StoreAll(block.Content(), kPenEntriesOffset, entries);
  block.Emit(device, REC_EXTCREATEPEN);
}

void EmitCreateBrush(DEVICE_PDEV& device, CreateBrushPayload brush, Bytes pattern) {
  const PayloadBlock block(
      CountedSize<std::byte>(sizeof(CreateBrushPayload) + kBrushTrailer, pattern.size()));
  if (!block) return;
  brush.pattern_size = static_cast<uint32_t>(pattern.size());
  Store(block.Content(), 0, brush);
  StoreAll(block.Content(), kBrushPatternOffset, pattern);
  block.Emit(device, REC_CREATEBRUSH);
}

void EmitSetBkColor(DEVICE_PDEV& device, uint32_t colour) {
  const uint32_t swapped = SwapRedBlue(colour);
  device.remembered_colour = swapped;
  EmitPayload(device, REC_SETBKCOLOR, swapped);
}

}  // namespace quillo
