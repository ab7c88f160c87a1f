#pragma once

namespace quillo {

/// The file names of the modules that "SaveFormats" entries refer to: seven, six times over, each
/// in 255 bytes. For other modules of the product, which read them in the
/// driver's image; the driver itself never does.
struct SaveFormatModules {
  char names[6][7][255];
};
extern const SaveFormatModules kSaveFormatModules;

}  // namespace quillo
