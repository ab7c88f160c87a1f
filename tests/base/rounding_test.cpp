#include <cmath>
#include <gtest/gtest.h>

#include "base/arithmetic.h"

namespace quillo {
namespace {

TEST(TruncateToInt, OutOfRange_Saturates) {
  EXPECT_EQ(TruncateToInt(-2.9f), -2);
  EXPECT_EQ(TruncateToInt(3e9f), INT32_MAX);
  EXPECT_EQ(TruncateToInt(-INFINITY), INT32_MIN);
  EXPECT_EQ(TruncateToInt(NAN), 0);
}

}  // namespace
}  // namespace quillo
