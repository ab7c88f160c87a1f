#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "capture/records/framing.h"
#include "capture/records/packed_bitmap.h"
#include "capture/records/packed_dib.h"
#include "capture/records/ternary_rop.h"
#include "capture/records/types.h"
#include "support/case_table.h"
#include "support/line.h"

namespace quillo::records {
namespace {

using test::Line;
using test::Scan;

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

TEST(TernaryRop, EveryIndex_HasItsPublishedCode) {
  test::CheckCases("capture/records/ternary_rops.txt", [](const auto& fields) {
    uint32_t index = 0;
    Scan(fields[0], index);
    return Line("0x", std::hex, TernaryRop(0xFFFFAA00 | index));
  });
}

// A whole packed DIB with a colour table of its depth and bits of zeros.
std::vector<std::byte> PackedBlock(const DibHeader& header, size_t bits, size_t in_front = 0) {
  std::vector<std::byte> block(in_front + PackedBitsOffset(header.bit_count) + bits);
  Store(MutableBytes(block), in_front, header);
  return block;
}

// Blocks end exactly where their memory does, so that a sanitizer sees every read past them.
TEST(LocatePackedDib, HeaderAndBits_FoundOrRefused_NothingReadBehindThem) {
  test::CheckCases("capture/records/packed_dibs.txt", [](const auto& fields) -> std::string {
    DibHeader header = {};
    size_t bits = 0;
    Scan(fields[1], header.size, header.width, header.height, header.bit_count, header.compression,
         bits);
    const auto whole = PackedBlock(header, bits, 3);
    const auto dib = LocatePackedDib(whole, 3);
    const bool any_size = IsRunLength(header.compression);
    const size_t needed =
        PackedBitsOffset(header.bit_count) + (any_size ? 1 : DibBitsBytes(header).value_or(0));
    for (size_t size = 0; size <= whole.size() - 3; ++size) {
      const auto exact = std::make_unique<std::byte[]>(size);
      std::memcpy(exact.get(), whole.data() + 3, size);
      const Bytes cut(exact.get(), size);
      EXPECT_EQ(LocatePackedDib(cut, 0).has_value(), dib && size >= needed) << size;
      EXPECT_FALSE(LocatePackedDib(cut, size));
      EXPECT_FALSE(LocatePackedDib(cut, UINT32_MAX));
    }
    if (!dib) return "none";
    EXPECT_EQ(dib->bits.data(), whole.data() + 3 + PackedBitsOffset(header.bit_count));
    return Line(dib->bits.size(), ' ', dib->info.header.size_image);
  });
}

TEST(LocatePackedDib, ColourTable_CopiedAndCountMadeTrue) {
  const DibHeader header = {40, 1, 1, 1, 1, 0, 0, 0, 0, 3, 0};
  auto block = PackedBlock(header, 4);
  Store(MutableBytes(block), 40, 0x00112233u);
  Store(MutableBytes(block), 44, 0x00445566u);
  const auto dib = LocatePackedDib(block, 0);
  ASSERT_TRUE(dib);
  EXPECT_EQ(dib->info.colours[0], 0x00112233u);
  EXPECT_EQ(dib->info.colours[1], 0x00445566u);
  EXPECT_EQ(dib->info.header.colours_used, 0u);
}

TEST(PackedSize, EveryFormat_HeaderTableAndBits) {
  test::CheckCases("capture/records/surface_formats.txt", [](const auto& fields) -> std::string {
    uint32_t number = 0;
    Scan(fields[0], number);
    const auto format = FindSurfaceFormat(number);
    if (!format) return "none";
    return Line(format->bit_count, ' ', format->compression, ' ', *PackedSize(*format, 100));
  });
  EXPECT_EQ(PackedSize({24, kDibRgb}, UINT32_MAX - 44), UINT32_MAX);
  EXPECT_FALSE(PackedSize({24, kDibRgb}, UINT32_MAX - 43));
  EXPECT_FALSE(PackedSize({24, kDibRgb}, uint64_t{1} << 32));
}

// The pieces in square brackets, with 0 for zero bytes; two letters a row. Rows that are missing or
// cut off are filled up.
TEST(ForEachPiece, Rows_BecomeBottomUpAndAddUp) {
  test::CheckCases("capture/records/pieces.txt", [](const auto& fields) {
    uint32_t row_size = 0, rows = 0;
    std::string text, order, pieces;
    Scan(fields[0], row_size, rows, order, text);
    const SurfaceBits surface = {std::as_bytes(std::span(text)), row_size, rows, order == "down"};
    size_t size = 0;
    ForEachPiece(surface, [&](Bytes piece) {
      pieces += '[' + std::string(reinterpret_cast<const char*>(piece.data()), piece.size()) + ']';
      size += piece.size();
    });
    EXPECT_EQ(size, surface.Size());
    std::ranges::replace(pieces, '\0', '0');
    if (pieces.size() > 100)
      pieces = Line(pieces.substr(0, 5), " and ", pieces.size() - 5, " more");
    return pieces;
  });
  EXPECT_EQ((SurfaceBits{{}, 0x80000000, 0xFFFFFFFF, true}).Size(), 0x7FFFFFFF80000000u);
}

}  // namespace
}  // namespace quillo::records
