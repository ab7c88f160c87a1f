#include <cstdint>
#include <gtest/gtest.h>
#include <limits>

#include "base/arithmetic.h"

namespace quillo {
namespace {

TEST(Checked, Overflow_Nothing) {
  EXPECT_EQ(CheckedAdd<int32_t>(2, 3), 5);
  EXPECT_EQ(CheckedAdd(std::numeric_limits<int32_t>::max(), 1), std::nullopt);
  EXPECT_EQ(CheckedMultiply<uint32_t>(65535, 65537), 0xFFFFFFFFu);
  EXPECT_EQ(CheckedMultiply<uint32_t>(65536, 65536), std::nullopt);
}

TEST(Checked, RangeFits_EveryEdge) {
  EXPECT_TRUE(RangeFits(10, 0, 10));
  EXPECT_TRUE(RangeFits(10, 10, 0));
  EXPECT_FALSE(RangeFits(10, 10, 1));
  EXPECT_FALSE(RangeFits(10, 11, 0));
  EXPECT_FALSE(RangeFits(10, 1, std::numeric_limits<size_t>::max()));
}

}  // namespace
}  // namespace quillo
