#include "job/object_reference.h"

#include <gtest/gtest.h>

#include "support/object_reference.h"

namespace quillo {
namespace {

TEST(AddressesOfReference, StandardReferenceOfTheInterfaceOnly) {
  std::vector<std::byte> id(16, std::byte{7});
  const std::vector<uint16_t> addresses = {7, 'h', 0, 0};
  for (const uint32_t kind : {0u, 1u, 2u, 3u, 4u, 5u, 8u}) {
    const auto reference = test::MakeReference(kind, id, addresses);
    EXPECT_EQ(AddressesOfReference(reference, id).has_value(), kind == 1) << kind;
  }
  auto reference = test::MakeReference(1, id, addresses);
  for (size_t size = 0; size < reference.size(); ++size) {
    const std::vector<std::byte> cut(reference.begin(), reference.begin() + std::ptrdiff_t(size));
    EXPECT_FALSE(AddressesOfReference(cut, id)) << size;
  }
  reference.push_back(std::byte{1});  // not part of it
  const auto table = AddressesOfReference(reference, id);
  ASSERT_TRUE(table);
  EXPECT_EQ(table->data(), reference.data() + 64);
  EXPECT_EQ(table->size(), 12u);
  EXPECT_EQ(AddressesOfReference(test::MakeReference(1, id, {}), id)->size(), kNoAddresses);
  id[15] = std::byte{8};
  EXPECT_FALSE(AddressesOfReference(reference, id));
  id[15] = std::byte{7};
  reference[0] = std::byte{0};
  EXPECT_FALSE(AddressesOfReference(reference, id));
}

}  // namespace
}  // namespace quillo
