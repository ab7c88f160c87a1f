#pragma once

#include <cstdint>
#include <unordered_map>

#include "host/emf_player/objects.h"

namespace quillo::host::emf {

/// The objects that a metafile has created, by their index, and the stock objects.
class ObjectTable {
 public:
  /// False when no table has such a place (0, or above 65535, as headers count handles in 16 bits).
  /// An object that stood there is replaced.
  bool Set(uint32_t index, Object object);
  /// False when there is no such object. One that is selected stays in use.
  bool Delete(uint32_t index);
  /// A created object, or a stock object (bit 31 set); nothing for any other index.
  Object Get(uint32_t index) const;

 private:
  std::unordered_map<uint32_t, Object> objects_;
};

/// WHITE_BRUSH (0) to DC_PEN (19); nothing for other numbers. DC_BRUSH and DC_PEN have their first
/// colours: no record changes them.
Object StockObject(uint32_t number);

}  // namespace quillo::host::emf
