#pragma once

#include <optional>

#include "base/bytes.h"

namespace quillo {

/// Size of an address table without addresses: two counts.
inline constexpr size_t kNoAddresses = 4;

/// Looks at a marshalled interface pointer (an OBJREF) before the system acts on it: one of another
/// kind can load any class of the machine. Nothing unless `reference` is a whole standard reference
/// without a handler, of the interface whose id has the 16 bytes `interface_id`; else its address
/// table (a DUALSTRINGARRAY), kNoAddresses or more bytes of `reference`. What follows is ignored,
/// as CoUnmarshalInterface ignores it.
std::optional<Bytes> AddressesOfReference(Bytes reference, Bytes interface_id);

}  // namespace quillo
