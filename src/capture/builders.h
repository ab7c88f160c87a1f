#pragma once

#include "base/ddi.h"

#include <cstdint>
#include <cstring>
#include <optional>
#include <span>

#include "base/bytes.h"
#include "base/system_owners.h"
#include "capture/records/payloads.h"
#include "capture/writer.h"

// One builder a record type. Each takes a zero-filled payload from the process heap, fills it,
// emits the record and gives the payload back; without memory the record is dropped silently.
// Records without a payload need no builder: EmitRecord(device, type).
namespace quillo {

/// The payload of one record while it is built.
class PayloadBlock {
 public:
  /// Empty when memory is short, and when there is no size because it did not fit.
  explicit PayloadBlock(std::optional<uint32_t> size) : size_(size.value_or(0)) {
    if (size) block_ = HeapBlock(size_);
  }

  explicit operator bool() const { return static_cast<bool>(block_); }
  [[nodiscard]] MutableBytes Content() const { return {block_.As<std::byte>(), size_}; }
  void Emit(DEVICE_PDEV& device, records::RecordType type) const {
    EmitRecord(device, type, block_.Get(), size_);
  }

 private:
  HeapBlock block_;
  uint32_t size_;
};

/// A record whose payload is one struct.
template <typename Payload>
void EmitPayload(DEVICE_PDEV& device, records::RecordType type, const Payload& payload) {
  const PayloadBlock block(static_cast<uint32_t>(sizeof payload));
  if (!block) return;
  Store(block.Content(), 0, payload);
  block.Emit(device, type);
}

inline void EmitMoveTo(DEVICE_PDEV& device, records::Point point) {
  EmitPayload(device, records::REC_MOVETO, point);
}

inline void EmitLineTo(DEVICE_PDEV& device, records::Point point) {
  EmitPayload(device, records::REC_LINETO, point);
}

/// `points` begins with the start of the curve.
void EmitPolyBezier(DEVICE_PDEV& device, std::span<const records::Point> points);

inline void EmitRectangle(DEVICE_PDEV& device, const records::Rect& rect) {
  EmitPayload(device, records::REC_RECTANGLE, rect);
}

inline void EmitFillRect(DEVICE_PDEV& device, const records::Rect& rect) {
  EmitPayload(device, records::REC_FILLRECT, rect);
}

/// `colour` is a COLORREF.
inline void EmitCreatePen(DEVICE_PDEV& device, uint32_t style, int32_t width, uint32_t colour) {
  EmitPayload(device, records::REC_CREATEPEN, records::CreatePenPayload{style, width, 0, colour});
}

/// Entries make the pen PS_USERSTYLE.
void EmitExtCreatePen(DEVICE_PDEV& device, uint32_t style, uint32_t width,
                      std::span<const uint32_t> entries);

/// `pattern`, a packed bitmap, stands behind `brush`, which gets its size.
void EmitCreateBrush(DEVICE_PDEV& device, records::CreateBrushPayload brush, Bytes pattern = {});

inline void EmitSetBrushOrg(DEVICE_PDEV& device, records::Point origin) {
  EmitPayload(device, records::REC_SETBRUSHORG, origin);
}

/// `mode` is recorded as it is.
inline void EmitSetRop2(DEVICE_PDEV& device, uint32_t mode) {
  EmitPayload(device, records::REC_SETROP2, mode);
}

inline void EmitSetPolyFillMode(DEVICE_PDEV& device, uint32_t mode) {
  EmitPayload(device, records::REC_SETPOLYFILLMODE, mode);
}

inline void EmitSetMiterLimit(DEVICE_PDEV& device, float limit) {
  EmitPayload(device, records::REC_SETMITERLIMIT, limit);
}

/// Records `colour` with red and blue exchanged, and remembers what it recorded: the next path
/// records that again through this very function. So the byte order of a colour that stays
/// alternates from one path to the next, which is meant.
void EmitSetBkColor(DEVICE_PDEV& device, uint32_t colour);

}  // namespace quillo
