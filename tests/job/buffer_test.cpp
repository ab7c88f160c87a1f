#include "job/buffer.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <vector>

namespace quillo {
namespace {

TEST(Buffer, Growth_DoublesItsStepAndLeavesAllWhenItFails) {
  // A heap of fixed size, so that a growth can fail.
  const HANDLE heap = HeapCreate(0, 0x10000, 0x40000);
  std::vector<std::byte> bytes(3000);
  for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<std::byte>(i * 7);
  {
    // Steps of 2048, 4096 (less than the old capacity and the new bytes) and 8192.
    CBuffer buffer(heap);
    for (const auto& [size, capacity] : std::initializer_list<std::pair<uint32_t, uint32_t>>{
             {10, 2048}, {2038, 2048}, {3000, 5048}, {1, 8192}}) {
      EXPECT_EQ(buffer.Append(bytes.data(), size), size);
      EXPECT_EQ(buffer.Capacity(), capacity);
    }
    EXPECT_EQ(buffer.Reserve(0x100000), 0);
    EXPECT_EQ(buffer.Reserve(0xFFFFFFFF), 0);
    EXPECT_EQ(buffer.Capacity(), 8192u);
    ASSERT_EQ(buffer.Unread().size(), 5049u);
    EXPECT_TRUE(std::ranges::equal(buffer.Unread().subspan(2048, 3000), bytes));
    EXPECT_EQ(buffer.Append("tail", 4), 4u);

    buffer.Consume(5050);
    EXPECT_EQ(buffer.Unread().size(), 3u);
    buffer.Reset();
    EXPECT_TRUE(buffer.Unread().empty());
    buffer.Append("after", 5);  // alone is written
    const auto path = std::filesystem::temp_directory_path() / "buffer test";
    EXPECT_EQ(buffer.WriteToFile(path.c_str()), 5u);
    EXPECT_EQ(buffer.WriteToFile(L"Z:\\no\\such\\folder\\file"), 0u);
    EXPECT_EQ(std::filesystem::file_size(path), 5u);
    std::filesystem::remove(path);
  }
  HeapDestroy(heap);
}

}  // namespace
}  // namespace quillo
