#include "job/object_reference.h"

#include <algorithm>

#include "base/arithmetic.h"

namespace quillo {

namespace {

constexpr uint32_t kSignature = 0x574F454D;  // the bytes "MEOW"
constexpr uint32_t kStandard = 1;            // other kinds: 2 has a handler, 4 its own class

struct StandardReference {
  uint32_t signature;
  uint32_t kind;
  std::byte interface_id[16];
  uint32_t flags;
  uint32_t references;
  std::byte exporter[8];
  std::byte object[8];
  std::byte interface_pointer[16];
  // The address table begins here.
  uint16_t address_units;  // UTF-16 units after the head
  uint16_t security_offset;
};
static_assert(sizeof(StandardReference) == 68);

}  // namespace

std::optional<Bytes> AddressesOfReference(Bytes reference, Bytes interface_id) {
  if (reference.size() < sizeof(StandardReference)) return std::nullopt;
  const auto head = LoadOrZero<StandardReference>(reference);
  if (head.signature != kSignature || head.kind != kStandard ||
      !std::ranges::equal(head.interface_id, interface_id)) {
    return std::nullopt;
  }
  const size_t table = sizeof head - kNoAddresses;
  const size_t size = kNoAddresses + size_t{head.address_units} * sizeof(uint16_t);
  if (!RangeFits(reference.size(), table, size)) return std::nullopt;
  return reference.subspan(table, size);
}

}  // namespace quillo
