#pragma once

#include <cstdint>
#include <vector>

#include "base/bytes.h"

namespace quillo::test {

/// A marshalled interface pointer of a kind (1: standard) with a table of addresses, all zero but
/// for what is given.
inline std::vector<std::byte> MakeReference(uint32_t kind, Bytes interface_id,
                                            const std::vector<uint16_t>& addresses) {
  std::vector<std::byte> reference(68 + addresses.size() * sizeof(uint16_t));
  Store<uint32_t>(reference, 0, 0x574F454D);
  Store(reference, 4, kind);
  std::memcpy(reference.data() + 8, interface_id.data(), 16);
  Store(reference, 64, static_cast<uint16_t>(addresses.size()));
  for (size_t i = 0; i < addresses.size(); ++i) Store(reference, 68 + 2 * i, addresses[i]);
  return reference;
}

}  // namespace quillo::test
