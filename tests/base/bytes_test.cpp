#include "base/bytes.h"

#include <array>
#include <gtest/gtest.h>

namespace quillo {
namespace {

TEST(Bytes, LoadOrZero_MissingBytesReadAsZero) {
  const std::array bytes = {std::byte{0x11}, std::byte{0x22}, std::byte{0x33}, std::byte{0x44}};
  EXPECT_EQ(LoadOrZero<uint32_t>(bytes), 0x44332211u);
  EXPECT_EQ(LoadOrZero<uint32_t>(bytes, 2), 0x00004433u);
  EXPECT_EQ(LoadOrZero<uint32_t>(bytes, 4), 0u);
  EXPECT_EQ(LoadOrZero<uint32_t>(bytes, static_cast<size_t>(-1)), 0u);
}

}  // namespace
}  // namespace quillo
