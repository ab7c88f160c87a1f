#include "job/buffer.h"

#include <cstring>
#include <gtest/gtest.h>
#include <vector>

namespace quillo {
namespace {

class Buffer : public testing::Test {
 protected:
  ~Buffer() override { HeapDestroy(heap_); }

  static std::vector<std::byte> Counting(size_t size) {
    std::vector<std::byte> bytes(size);
    for (size_t i = 0; i < size; ++i) bytes[i] = static_cast<std::byte>(i * 7);
    return bytes;
  }

  // A heap of fixed size, so that a growth can fail.
  HANDLE heap_ = HeapCreate(0, 0x10000, 0x40000);
};

TEST_F(Buffer, Growth_DoublesItsStep) {
  CBuffer buffer(heap_);
  EXPECT_EQ(buffer.Append("0123456789", 10), 10u);
  EXPECT_EQ(buffer.Capacity(), 2048u);
  buffer.Append(Counting(2038).data(), 2038);
  EXPECT_EQ(buffer.Capacity(), 2048u);
  // Step 4096; old capacity and the new bytes together are more.
  buffer.Append(Counting(3000).data(), 3000);
  EXPECT_EQ(buffer.Capacity(), 5048u);
  // Step 8192; now the step is more.
  buffer.Append("x", 1);
  EXPECT_EQ(buffer.Capacity(), 8192u);
}

TEST_F(Buffer, FailedGrowth_KeepsContentAndCapacity) {
  CBuffer buffer(heap_);
  const auto bytes = Counting(3000);
  ASSERT_EQ(buffer.Append(bytes.data(), 3000), 3000u);
  const uint32_t capacity = buffer.Capacity();
  EXPECT_EQ(buffer.Reserve(0x100000), 0);
  EXPECT_EQ(buffer.Reserve(0xFFFFFFFF), 0);
  EXPECT_EQ(buffer.Capacity(), capacity);
  ASSERT_EQ(buffer.Unread().size(), 3000u);
  EXPECT_EQ(std::memcmp(buffer.Unread().data(), bytes.data(), 3000), 0);
  EXPECT_EQ(buffer.Append("tail", 4), 4u);
}

TEST_F(Buffer, Reset_WritesOnlyWhatCameSince) {
  wchar_t folder[MAX_PATH];
  wchar_t path[MAX_PATH];
  ASSERT_NE(GetTempPathW(MAX_PATH, folder), 0u);
  ASSERT_NE(GetTempFileNameW(folder, L"buf", 0, path), 0u);

  CBuffer buffer(heap_);
  buffer.Append("before", 6);
  buffer.Consume(3);
  EXPECT_EQ(buffer.Unread().size(), 3u);
  buffer.Reset();
  EXPECT_TRUE(buffer.Unread().empty());
  buffer.Append("after", 5);
  EXPECT_EQ(buffer.WriteToFile(path), 5u);
  EXPECT_EQ(buffer.WriteToFile(L"Z:\\no\\such\\folder\\file"), 0u);

  WIN32_FILE_ATTRIBUTE_DATA attributes = {};
  ASSERT_TRUE(GetFileAttributesExW(path, GetFileExInfoStandard, &attributes));
  EXPECT_EQ(attributes.nFileSizeLow, 5u);
  DeleteFileW(path);
}

}  // namespace
}  // namespace quillo
