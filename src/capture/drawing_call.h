#pragma once

#include "base/ddi.h"

#include "capture/writer.h"
#include "driver/device/device.h"

namespace quillo {

/// The records around one drawing call: a reset transform and a saved state, and the state restored
/// at the end of the scope. The restore keeps the last error.
class DrawingBracket {
 public:
  explicit DrawingBracket(DEVICE_PDEV& device) : device_(device) {
    EmitRecord(device_, records::REC_RESETWORLDTRANSFORM);
    EmitRecord(device_, records::REC_SAVEDC);
  }
  ~DrawingBracket() {
    const DWORD last_error = GetLastError();
    EmitRecord(device_, records::REC_RESTOREDC);
    SetLastError(last_error);
  }
  DrawingBracket(const DrawingBracket&) = delete;
  DrawingBracket& operator=(const DrawingBracket&) = delete;

 private:
  DEVICE_PDEV& device_;
};

/// The common frame of the drawing hooks: FALSE without a device and when drawing is refused, TRUE
/// without records when it is discarded; otherwise draw(device), which returns BOOL, between the
/// bracketing records.
template <typename Draw>
BOOL CaptureDrawing(DEVICE_PDEV* device, Draw draw) {
  if (device == nullptr || (device->flags & kDrawingRefused) != 0) return FALSE;
  if ((device->flags & kDrawingDiscarded) != 0) return TRUE;
  const DrawingBracket bracket(*device);
  return draw(*device);
}

}  // namespace quillo
