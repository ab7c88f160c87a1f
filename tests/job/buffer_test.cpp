#include "job/buffer.h"

#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>
#include <vector>

namespace quillo {
namespace {

class Buffer : public testing::Test {
 protected:
  ~Buffer() override { HeapDestroy(heap_); }

  // A heap of fixed size, so that a growth can fail.
  HANDLE heap_ = HeapCreate(0, 0x10000, 0x40000);
  const std::vector<char> bytes_ = [] {
    std::vector<char> bytes(3000);
    for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>(i * 7);
    return bytes;
  }();
};

TEST_F(Buffer, Growth_DoublesItsStep) {
  // Steps of 2048, 4096 (less than the old capacity and the new bytes) and 8192.
  const struct {
    uint32_t size, capacity;
  } appends[] = {{10, 2048}, {2038, 2048}, {3000, 5048}, {1, 8192}};
  CBuffer buffer(heap_);
  for (const auto& append : appends) {
    EXPECT_EQ(buffer.Append(bytes_.data(), append.size), append.size);
    EXPECT_EQ(buffer.Capacity(), append.capacity);
  }
}

TEST_F(Buffer, FailedGrowth_KeepsContentAndCapacity) {
  CBuffer buffer(heap_);
  ASSERT_EQ(buffer.Append(bytes_.data(), 3000), 3000u);
  const uint32_t capacity = buffer.Capacity();
  EXPECT_EQ(buffer.Reserve(0x100000), 0);
  EXPECT_EQ(buffer.Reserve(0xFFFFFFFF), 0);
  EXPECT_EQ(buffer.Capacity(), capacity);
  ASSERT_EQ(buffer.Unread().size(), 3000u);
  EXPECT_EQ(std::memcmp(buffer.Unread().data(), bytes_.data(), 3000), 0);
  EXPECT_EQ(buffer.Append("tail", 4), 4u);
}

TEST_F(Buffer, Reset_WritesOnlyWhatCameSince) {
  CBuffer buffer(heap_);
  buffer.Append("before", 6);
  buffer.Consume(3);
  EXPECT_EQ(buffer.Unread().size(), 3u);
  buffer.Reset();
  EXPECT_TRUE(buffer.Unread().empty());
  buffer.Append("after", 5);
  const auto path = std::filesystem::temp_directory_path() / "buffer test";
  EXPECT_EQ(buffer.WriteToFile(path.c_str()), 5u);
  EXPECT_EQ(buffer.WriteToFile(L"Z:\\no\\such\\folder\\file"), 0u);
  EXPECT_EQ(std::filesystem::file_size(path), 5u);
  std::filesystem::remove(path);
}

}  // namespace
}  // namespace quillo
