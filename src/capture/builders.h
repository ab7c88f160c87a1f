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

// One builder per record type. Each allocates a payload from the process heap, fills it (what it
// does not set is zeros), emits the record and frees the payload; when memory is short the record
// is dropped silently. Records without a payload need no builder: EmitRecord(device, type).
namespace quillo {

/// The payload of one record under construction.
class PayloadBlock {
 public:
  /// What a fresh payload holds. Anything: its builder sets all of it.
  enum class Fresh { kZeros, kAnything };

  /// Empty when memory is short, and without a size (one that does not fit 32 bits).
  explicit PayloadBlock(std::optional<uint32_t> size, Fresh fresh = Fresh::kZeros);
  /// A large block is kept for the next large payload, in place of the one kept before.
  ~PayloadBlock();
  PayloadBlock(const PayloadBlock&) = delete;
  PayloadBlock& operator=(const PayloadBlock&) = delete;

  explicit operator bool() const { return static_cast<bool>(block_); }
  [[nodiscard]] MutableBytes Content() const { return {block_.As<std::byte>(), size_}; }
  void Emit(DEVICE_PDEV& device, records::RecordType type) const {
    EmitRecord(device, type, block_.Get(), size_);
  }

 private:
  HeapBlock block_;
  uint32_t size_;
  uint32_t capacity_;
};

/// Frees the block that is kept.
void DropSparePayload();

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

/// `pattern` is a packed bitmap; its size is filled in.
void EmitCreateBrush(DEVICE_PDEV& device, records::CreateBrushPayload brush, Bytes pattern = {});

inline void EmitSetBrushOrg(DEVICE_PDEV& device, records::Point origin) {
  EmitPayload(device, records::REC_SETBRUSHORG, origin);
}

/// `mode` is recorded unchanged.
inline void EmitSetRop2(DEVICE_PDEV& device, uint32_t mode) {
  EmitPayload(device, records::REC_SETROP2, mode);
}

inline void EmitSetPolyFillMode(DEVICE_PDEV& device, uint32_t mode) {
  EmitPayload(device, records::REC_SETPOLYFILLMODE, mode);
}

inline void EmitSetMiterLimit(DEVICE_PDEV& device, float limit) {
  EmitPayload(device, records::REC_SETMITERLIMIT, limit);
}

/// Records `colour` with red and blue exchanged, and remembers the exchanged colour on the device.
///
/// Compatibility: every path records the remembered colour through this function, so that its byte
/// order alternates from one path to the next, as in existing streams.
void EmitSetBkColor(DEVICE_PDEV& device, uint32_t colour);

}  // namespace quillo
