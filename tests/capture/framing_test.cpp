#include "capture/records/framing.h"

#include <gtest/gtest.h>

#include "capture/records/types.h"

namespace quillo::records {
namespace {

TEST(NextFrame, EveryTruncation_NothingUntilWhole) {
  uint32_t words[] = {REC_MOVETO, 8, 11, 22, REC_SAVEDC, 0};
  const MutableBytes stream = std::as_writable_bytes(std::span(words));
  for (size_t size = 0; size < 16; ++size) EXPECT_FALSE(NextFrame(stream.first(size))) << size;
  const auto frame = NextFrame(stream);
  ASSERT_TRUE(frame);
  EXPECT_EQ(frame->type, static_cast<uint32_t>(REC_MOVETO));
  EXPECT_EQ(frame->size, 16u);
  EXPECT_EQ(LoadOrZero<int32_t>(frame->payload, 4), 22);
  const auto empty = NextFrame(stream.subspan(16));
  ASSERT_TRUE(empty);
  EXPECT_EQ(empty->size, 8u);
  words[1] = UINT32_MAX;
  EXPECT_FALSE(NextFrame(stream));
}

}  // namespace
}  // namespace quillo::records
