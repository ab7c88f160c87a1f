// Heads of object references: whatever stands in a connection file.
#include <cstdlib>
#include <vector>

#include "job/object_reference.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  // A block of its own ends where the sanitizer sees reads beyond it.
  const std::vector<std::byte> reference(reinterpret_cast<const std::byte*>(data),
                                         reinterpret_cast<const std::byte*>(data) + size);
  constexpr std::byte kId[16] = {std::byte{1}, std::byte{2}};
  const auto table = quillo::AddressesOfReference(reference, kId);
  if (!table) return 0;
  const auto* end = reference.data() + reference.size();
  if (table->size() < quillo::kNoAddresses || table->data() + table->size() > end) std::abort();
  volatile std::byte last = table->back();
  (void)last;
  return 0;
}
