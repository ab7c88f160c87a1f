#pragma once

namespace quillo {

/// The file names of the modules that "SaveFormats" entries refer to: seven, six times over, each
/// in 255 bytes. They are there for those who read them in the driver's image; it reads none
/// itself.
struct SaveFormatModules {
  char names[6][7][255];
};
extern const SaveFormatModules kSaveFormatModules;

}  // namespace quillo
