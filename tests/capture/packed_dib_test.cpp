#include "capture/records/packed_dib.h"

#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <vector>

namespace quillo::records {
namespace {

// A whole packed DIB with a colour table of its depth and bits of zeros.
std::vector<std::byte> PackedBlock(const DibHeader& header, size_t bits, size_t in_front = 0) {
  std::vector<std::byte> block(in_front + PackedBitsOffset(header.bit_count) + bits);
  Store(MutableBytes(block), in_front, header);
  return block;
}

DibHeader Header(int32_t width, int32_t height, uint16_t bit_count, uint32_t compression = 0) {
  return {40, width, height, 1, bit_count, compression, 0, 0, 0, 0, 0};
}

TEST(LocatePackedDib, HeaderAndBits_FoundOrRefused) {
  const struct {
    const char* name;
    DibHeader header;
    size_t bits;      // bytes that stand behind the colour table
    bool found;       // with exactly these
    size_t expected;  // bytes of the located bits
  } kCases[] = {
      {"1 bit, padded rows", Header(33, 2, 1), 16, true, 16},
      {"4 bits", Header(5, 3, 4), 12, true, 12},
      {"8 bits, bytes behind the bits", Header(5, 3, 8), 30, true, 24},
      {"16 bits", Header(3, 1, 16), 8, true, 8},
      {"24 bits top-down", Header(3, -2, 24), 24, true, 24},
      {"32 bits", Header(1, 1, 32), 4, true, 4},
      {"no header", {}, 99, false, 0},
      {"header of another size", {108, 1, 1, 1, 24, 0, 0, 0, 0, 0, 0}, 99, false, 0},
      {"one byte short", Header(3, -2, 24), 23, false, 0},
      {"run-length takes all that is there", Header(100, 100, 8, kDibRle8), 7, true, 7},
      {"run-length without bits", Header(100, 100, 4, kDibRle4), 0, false, 0},
      {"run-length of the other depth", Header(1, 1, 4, kDibRle8), 99, false, 0},
      {"bit fields", Header(1, 1, 32, kDibBitFields), 99, false, 0},
      {"unknown depth", Header(1, 1, 2), 99, false, 0},
      {"depth 0", Header(1, 1, 0), 99, false, 0},
      {"width 0", Header(0, 1, 24), 99, false, 0},
      {"negative width", Header(-1, 1, 24), 99, false, 0},
      {"height 0", Header(1, 0, 24), 99, false, 0},
      {"product beyond 32 bits", Header(0x10000, 0x10000, 8), 99, false, 0},
      {"product beyond 64 bits", Header(INT32_MAX, INT32_MIN, 32), 99, false, 0},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.name);
    const auto block = PackedBlock(c.header, c.bits, 3);
    const auto dib = LocatePackedDib(block, 3);
    ASSERT_EQ(dib.has_value(), c.found);
    if (!c.found) continue;
    EXPECT_EQ(dib->bits.data(), block.data() + 3 + PackedBitsOffset(c.header.bit_count));
    EXPECT_EQ(dib->bits.size(), c.expected);
    EXPECT_EQ(dib->info.header.size_image, c.header.compression != kDibRgb ? c.expected : 0);
  }
}

// Blocks end exactly where their memory does, so that a sanitizer sees every read behind them.
TEST(LocatePackedDib, EveryTruncationAndOffset_NothingRead) {
  for (const uint16_t bit_count : {uint16_t{1}, uint16_t{8}, uint16_t{24}}) {
    const auto whole = PackedBlock(Header(9, 2, bit_count), 64);
    const uint64_t needed = PackedBitsOffset(bit_count) + *DibBitsBytes(Header(9, 2, bit_count));
    for (size_t size = 0; size <= whole.size(); ++size) {
      const auto exact = std::make_unique<std::byte[]>(size);
      std::memcpy(exact.get(), whole.data(), size);
      const Bytes block(exact.get(), size);
      EXPECT_EQ(LocatePackedDib(block, 0).has_value(), size >= needed) << bit_count << ' ' << size;
      EXPECT_FALSE(LocatePackedDib(block, size));
      EXPECT_FALSE(LocatePackedDib(block, UINT32_MAX));
    }
  }
}

TEST(LocatePackedDib, ColourTable_CopiedAndCountMadeTrue) {
  DibHeader header = Header(1, 1, 1);
  header.colours_used = 3;
  auto block = PackedBlock(header, 4);
  Store(MutableBytes(block), 40, 0x00112233u);
  Store(MutableBytes(block), 44, 0x00445566u);
  const auto dib = LocatePackedDib(block, 0);
  ASSERT_TRUE(dib);
  EXPECT_EQ(dib->info.colours[0], 0x00112233u);
  EXPECT_EQ(dib->info.colours[1], 0x00445566u);
  EXPECT_EQ(dib->info.header.colours_used, 0u);
}

}  // namespace
}  // namespace quillo::records
