#include "base/owner.h"

#include <gtest/gtest.h>

namespace quillo {
namespace {

int released = 0;

struct CountedTraits {
  using Type = int;
  static constexpr Type kNull = 0;
  static void Release(Type) {
    ++released;
    SetLastError(ERROR_GEN_FAILURE);
  }
};
using Counted = Owner<CountedTraits>;

TEST(Owner, EveryWayOut_ReleasesOnceAndKeepsLastError) {
  released = 0;
  SetLastError(ERROR_FILE_NOT_FOUND);
  {
    Counted a(1);
    Counted b(std::move(a));
    EXPECT_FALSE(a);  // NOLINT(bugprone-use-after-move): what it is left as
    a = std::move(b);
    EXPECT_TRUE(a);
    a.Reset(2);
    EXPECT_EQ(released, 1);
    EXPECT_EQ(a.Detach(), 2);
  }
  EXPECT_EQ(released, 1);
  { const Counted c(3); }
  EXPECT_EQ(released, 2);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
}

}  // namespace
}  // namespace quillo
