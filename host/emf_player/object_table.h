#pragma once

#include <cstdint>
#include <unordered_map>

#include "host/emf_player/objects.h"

namespace quillo::host::emf {

/// The objects that a metafile has created, by index, and the stock objects.
class ObjectTable {
 public:
  /// Replaces an object with this index. False for an index that no table has: 0, or above 65535,
  /// as headers count handles in 16 bits.
  bool Set(uint32_t index, Object object);
  /// False when there is no such object. A selected object stays in use.
  bool Delete(uint32_t index);
  /// A created object, or a stock object (bit 31 set); empty for any other index.
  Object Get(uint32_t index) const;

 private:
  std::unordered_map<uint32_t, Object> objects_;
};

/// WHITE_BRUSH (0) to DC_PEN (19); empty for other numbers. DC_BRUSH and DC_PEN have their initial
/// colours, which no record changes.
Object StockObject(uint32_t number);

}  // namespace quillo::host::emf
