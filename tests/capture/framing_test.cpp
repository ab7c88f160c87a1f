#include "capture/records/framing.h"

#include <gtest/gtest.h>
#include <vector>

#include "capture/records/types.h"

namespace quillo::records {
namespace {

std::vector<std::byte> Stream(std::initializer_list<uint32_t> words) {
  std::vector<std::byte> bytes(words.size() * sizeof(uint32_t));
  size_t offset = 0;
  for (const uint32_t word : words) {
    Store(MutableBytes(bytes), offset, word);
    offset += sizeof word;
  }
  return bytes;
}

TEST(NextFrame, EveryTruncation_NothingUntilWhole) {
  auto stream = Stream({REC_MOVETO, 8, 11, 22});
  for (size_t size = 0; size < stream.size(); ++size) {
    EXPECT_FALSE(NextFrame(MutableBytes(stream).first(size))) << size;
  }
  const auto frame = NextFrame(stream);
  ASSERT_TRUE(frame);
  EXPECT_EQ(frame->type, static_cast<uint32_t>(REC_MOVETO));
  EXPECT_EQ(frame->size, 16u);
  EXPECT_EQ(LoadOrZero<int32_t>(frame->payload, 4), 22);
}

TEST(NextFrame, SizeBeyondAddressSpace_Incomplete) {
  auto stream = Stream({REC_MOVETO, 0xFFFFFFFF, 0});
  EXPECT_FALSE(NextFrame(stream));
}

TEST(NextFrame, EmptyPayload_EightBytes) {
  auto stream = Stream({REC_SAVEDC, 0, REC_RESTOREDC, 0});
  const auto frame = NextFrame(stream);
  ASSERT_TRUE(frame);
  EXPECT_EQ(frame->size, 8u);
  EXPECT_TRUE(frame->payload.empty());
}

}  // namespace
}  // namespace quillo::records
