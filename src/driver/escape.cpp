#include "base/ddi.h"

#include <cstring>

#include "capture/writer.h"
#include "driver/callbacks.h"
#include "driver/device/device.h"

namespace quillo {

namespace {

constexpr uint32_t kPrivateNoOperation = 5000;
constexpr uint32_t kPrivateJobMark = 5001;

bool IsSupported(uint32_t escape) {
  return escape == QUERYESCSUPPORT || escape == GETDEVICEUNITS || escape == kPrivateNoOperation ||
         escape == kPrivateJobMark;
}

/// The printable size, then the left and top margins, in device pixels.
struct DeviceUnits {
  int32_t width;
  int32_t height;
  int32_t left;
  int32_t top;
};

DeviceUnits DeviceUnitsOf(const DEVICE_PDEV& device) {
  const auto& [size, margins, printable] = device.sheet.pixels;
  return {printable.width, printable.height, margins.left, margins.top};
}

}  // namespace

/// An unknown escape and a missing buffer return 0 without a last error.
///
/// Compatibility: the sizes are ignored; QUERYESCSUPPORT reads 4 bytes, GETDEVICEUNITS writes 16.
/// Kept for callers that pass 0.
ULONG APIENTRY DrvEscape(SURFOBJ* surface, ULONG escape, ULONG /*input_size*/, PVOID input,
                         ULONG /*output_size*/, PVOID output) noexcept {
  switch (escape) {
    case QUERYESCSUPPORT: {
      uint32_t asked = 0;
      if (input != nullptr) std::memcpy(&asked, input, sizeof(asked));
      return IsSupported(asked);
    }
    case GETDEVICEUNITS: {
      if (output == nullptr) return 0;
      const DEVICE_PDEV* device = FindDevice(surface);
      if (device == nullptr) return 0;
      const DeviceUnits units = DeviceUnitsOf(*device);
      std::memcpy(output, &units, sizeof(units));
      return 1;
    }
    case kPrivateNoOperation:
      return 1;
    case kPrivateJobMark:
      if (DEVICE_PDEV* device = FindDevice(surface)) EmitRecord(*device, records::REC_ESCAPEMARK);
      return 1;
    default:
      return 0;
  }
}

}  // namespace quillo
