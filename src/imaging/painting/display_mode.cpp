#include "imaging/painting/display_mode.h"

#include <numeric>

#include "imaging/bitmap/kernel_settings.h"
#include "imaging/painting/paint_method.h"

namespace quillo::imaging {

uint32_t SetDisplayMode(uint32_t mask, uint32_t values) {
  KernelSettings& settings = ThreadSettings();
  const uint32_t before = settings.display_mode;
  settings.display_mode = (before & ~mask) | (values & mask);
  if ((settings.display_mode & ~before & kModeResetTable) != 0) {
    std::iota(std::begin(settings.display_table), std::end(settings.display_table), uint16_t{0});
  }
  return before;
}

}  // namespace quillo::imaging
