#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

#include "imaging/avx2.h"
#include "imaging/bit_fields.h"
#include "imaging/damaged_input.h"
#include "imaging/yuv.h"
#include "support/corpus.h"

namespace quillo::imaging {
namespace {

std::vector<std::byte> ToBytes(std::initializer_list<int> values) {
  std::vector<std::byte> bytes;
  for (const int value : values) bytes.push_back(static_cast<std::byte>(value));
  return bytes;
}

std::vector<std::byte> Random(size_t size, uint32_t seed = 1) {
  std::mt19937 random(seed);
  std::vector<std::byte> bytes(size);
  for (std::byte& byte : bytes) byte = static_cast<std::byte>(random());
  return bytes;
}

struct Header {
  uint32_t size = 40;
  int32_t width = 1;
  int32_t height = 1;
  uint16_t planes = 1;
  uint16_t bits = 24;
  uint32_t compression = 0;
  uint32_t image_size = 0;
  int32_t x_pels = 0;
  int32_t y_pels = 0;
  uint32_t colours_used = 0;
  uint32_t colours_important = 0;
};
static_assert(sizeof(Header) == 40);

Bytes AsBytes(const Header& header) { return std::as_bytes(std::span(&header, 1)); }

uint32_t Code(const char (&name)[5]) {
  uint32_t code;
  std::memcpy(&code, name, 4);
  return code;
}

TEST(AnalyzeDib, HeadersAndCompressions_GiveTheirCodes) {
  struct {
    const char* name;
    Header header;
    int result;
    uint32_t bits;
  } const cases[] = {
      {"size 0", {.size = 0}, kUnsupportedFormat, 0},
      {"short header", {.size = 39}, kUnsupportedFormat, 0},
      {"24 bits", {}, kSuccess, 24},
      {"9 bits", {.bits = 9}, kUnsupportedFormat, 0},
      {"0 bits", {.bits = 0}, kUnsupportedFormat, 0},
      {"7 bits", {.bits = 7}, kSuccess, 7},
      {"negative width", {.width = -1}, kInvalidArgument, 0},
      {"lowest height", {.height = INT32_MIN}, kSuccess, 24},
      {"rle8 of 8", {.bits = 8, .compression = 1}, kSuccess, 8},
      {"rle8 of 4", {.bits = 4, .compression = 1}, kUnsupportedFormat, 0},
      {"rle4 of 4", {.bits = 4, .compression = 2}, kSuccess, 4},
      {"bit fields of 16", {.bits = 16, .compression = 3}, kSuccess, 16},
      {"bit fields of 24", {.bits = 24, .compression = 3}, kUnsupportedFormat, 0},
      {"jpeg in a dib", {.bits = 0, .compression = 4}, kUnsupportedFormat, 0},
      {"png in a dib", {.bits = 0, .compression = 5}, kUnsupportedFormat, 0},
      {"alpha bit fields", {.bits = 32, .compression = 6}, kUnsupportedFormat, 0},
      {"YVU9", {.width = 16, .height = 32, .bits = 9, .compression = Code("YVU9")}, kSuccess, 24},
      {"IF09",
       {.width = 24, .height = 32, .bits = 9, .compression = Code("IF09")},
       kUnsupportedFormat,
       0},
      {"I420", {.width = 4, .height = -8, .bits = 12, .compression = Code("I420")}, kSuccess, 24},
      {"I420, width 6",
       {.width = 6, .height = 8, .bits = 12, .compression = Code("I420")},
       kUnsupportedFormat,
       0},
      {"IYUV, height 6",
       {.width = 4, .height = 6, .bits = 12, .compression = Code("IYUV")},
       kUnsupportedFormat,
       0},
      {"YV12 of 24",
       {.width = 4, .height = 4, .bits = 24, .compression = Code("YV12")},
       kUnsupportedFormat,
       0},
      {"UYVY", {.width = 2, .bits = 16, .compression = Code("UYVY")}, kSuccess, 24},
      {"cyuv, odd", {.width = 3, .bits = 16, .compression = Code("cyuv")}, kUnsupportedFormat, 0},
      {"YUY2", {.width = 2, .bits = 16, .compression = Code("YUY2")}, kSuccess, 24},
      {"YVYU", {.width = 2, .bits = 16, .compression = Code("YVYU")}, kSuccess, 24},
      {"Y211", {.width = 2, .bits = 8, .compression = Code("Y211")}, kSuccess, 24},
      {"Y42T of 16", {.width = 2, .bits = 16, .compression = Code("Y42T")}, kSuccess, 24},
      {"Y42T of 24", {.width = 2, .bits = 24, .compression = Code("Y42T")}, kSuccess, 24},
      {"Y41P", {.width = 4, .height = 4, .bits = 12, .compression = Code("Y41P")}, kSuccess, 24},
      {"Y41T, height 2",
       {.width = 4, .height = 2, .bits = 12, .compression = Code("Y41T")},
       kUnsupportedFormat,
       0},
      {"MJPG", {.compression = Code("MJPG")}, kSuccess, 24},
      {"dmb1", {.compression = Code("dmb1")}, kSuccess, 24},
      {"DIVX", {.compression = Code("DIVX")}, kUnsupportedFormat, 0},
  };
  for (const auto& c : cases) {
    Dib dib;
    EXPECT_EQ(AnalyzeDib(AsBytes(c.header), &dib), c.result) << c.name;
    EXPECT_EQ(dib.bits_per_pixel, c.bits) << c.name;
  }
}

TEST(DotsPerInch, PixelsPerMetre_TruncateTowardsZero) {
  EXPECT_EQ(DotsPerInch(3780), 96);
  EXPECT_EQ(DotsPerInch(23622), 600);
  EXPECT_EQ(DotsPerInch(-3780), -95);
  EXPECT_EQ(DotsPerInch(INT32_MAX), 54546085);
}

TEST(ReadColourTable, ShortTables_AreBlackOrGrey) {
  struct {
    const char* name;
    size_t header_size;
    uint32_t colours_used;
    uint32_t colours;
    PaletteEntry second;
    PaletteEntry third;
  } const cases[] = {
      {"whole", 40 + 4 * 16, 0, 16, {8, 9, 10, 0}, {12, 13, 14, 0}},
      {"two entries", 48, 0, 16, {8, 9, 10, 0}, {0, 0, 0, 0}},
      {"one entry is no table", 44, 0, 16, {17, 17, 17, 0}, {34, 34, 34, 0}},
      {"three announced", 40 + 4 * 16, 3, 3, {8, 9, 10, 0}, {12, 13, 14, 0}},
      {"more than there can be", 40 + 4 * 16, 0xFFFFFFFF, 16, {8, 9, 10, 0}, {12, 13, 14, 0}},
  };
  for (const auto& c : cases) {
    std::vector<std::byte> header(c.header_size);
    std::ranges::copy(AsBytes({.bits = 4, .colours_used = c.colours_used}), header.begin());
    for (size_t i = 40; i < header.size(); ++i) header[i] = static_cast<std::byte>(i - 36);
    Dib dib;
    ASSERT_EQ(AnalyzeDib(header, &dib), kSuccess);
    EXPECT_EQ(dib.colours, c.colours) << c.name;
    std::vector<PaletteEntry> palette(dib.colours);
    ReadColourTable(header, dib, palette);
    EXPECT_EQ(palette[1], c.second) << c.name;
    EXPECT_EQ(palette[2], c.third) << c.name;
  }
}

/// Expands a stream and shows each row in hexadecimal digits, one a pixel of 4 bits, two of 8.
std::string Expand(uint16_t bits, int32_t width, int32_t height, const std::vector<std::byte>& in) {
  const Header header{
      .width = width, .height = height, .bits = bits, .compression = bits == 8 ? 1u : 2u};
  const ConvertedDib out = ConvertInMemory(AsBytes(header), in);
  std::string text = out.result == kSuccess ? "" : "failed";
  for (size_t i = 0; i < out.rows.size(); ++i) {
    const size_t column = i % out.geometry.bytes_per_line;
    if (i != 0 && column == 0) text += '|';
    if (column >= (static_cast<size_t>(width) * bits + 7) / 8) continue;
    for (const int shift : {4, 0}) {
      text += "0123456789ABCDEF"[static_cast<int>(out.rows[i]) >> shift & 15];
    }
  }
  return text;
}

TEST(ExpandRle, Streams_GiveTheirPixels) {
  struct {
    const char* name;
    uint16_t bits;
    int32_t width, height;
    std::vector<std::byte> stream;
    const char* rows;
  } const cases[] = {
      {"empty", 8, 2, 1, {}, "0000"},
      {"run", 8, 3, 1, ToBytes({3, 7}), "070707"},
      {"run over the row", 8, 3, 1, ToBytes({255, 7}), "070707"},
      {"literal with padding", 8, 4, 1, ToBytes({0, 3, 1, 2, 3, 99, 1, 4}), "01020304"},
      {"literal cut off", 8, 4, 1, ToBytes({0, 4, 1, 2}), "01020000"},
      {"end of line", 8, 1, 2, ToBytes({1, 1, 0, 0, 1, 2}), "01|02"},
      {"end of bitmap", 8, 1, 2, ToBytes({1, 1, 0, 1, 0, 0, 1, 2}), "01|00"},
      {"delta", 8, 3, 3, ToBytes({1, 1, 0, 2, 1, 2, 1, 2}), "010000|000000|000002"},
      {"delta back to no column", 8, 2, 1, ToBytes({1, 1, 0, 2, 0, 0, 1, 2}), "0102"},
      {"delta out of the bitmap", 8, 2, 2, ToBytes({1, 1, 0, 2, 255, 255, 9, 9}), "0100|0000"},
      {"delta cut off", 8, 2, 1, ToBytes({1, 1, 0, 2, 1}), "0100"},
      {"rows too many", 8, 1, 1, ToBytes({1, 1, 0, 0, 1, 2, 0, 0, 1, 3}), "01"},
      {"half a pair", 8, 1, 1, ToBytes({1}), "00"},
      {"nibble run", 4, 5, 1, ToBytes({5, 0x12}), "121210"},
      {"nibble run from an odd column", 4, 6, 1, ToBytes({1, 0xA0, 4, 0x12}), "A12120"},
      {"nibble literal", 4, 6, 1, ToBytes({0, 5, 0x12, 0x34, 0x50, 0, 1, 0x60}), "123456"},
      {"nibble literal from an odd column", 4, 4, 1, ToBytes({1, 0x90, 0, 3, 0x12, 0x30}), "9123"},
      {"nibble literal over the row", 4, 2, 1, ToBytes({0, 5, 0x12, 0x34, 0x50, 0}), "12"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Expand(c.bits, c.width, c.height, c.stream), c.rows) << c.name;
  }
}

TEST(BitFieldConverter, AnyMasks_ScaleToTheRange) {
  struct {
    const char* name;
    uint32_t bits;
    ColourMasks masks;
    uint32_t pixel, result;
  } const cases[] = {
      {"usual 5-5-5 keeps the spare bit", 16, {0x7C00, 0x3E0, 0x1F}, 0xFFFF, 0xFFFF},
      {"5-6-5 green rounds", 16, {0xF800, 0x7E0, 0x1F}, 0x07E0, 0x03E0},
      {"5-6-5 lowest green", 16, {0xF800, 0x7E0, 0x1F}, 0x0020, 0x0000},
      {"4-4-4", 16, {0xF00, 0xF0, 0xF}, 0x0F0F, 0x7C1F},
      {"one bit", 16, {4, 2, 1}, 0x0005, 0x7C1F},
      {"zero masks", 16, {0, 0, 0}, 0xFFFF, 0},
      {"usual 8-8-8 keeps the spare byte", 32, {0xFF0000, 0xFF00, 0xFF}, 0x12345678, 0x12345678},
      {"reversed", 32, {0xFF, 0xFF00, 0xFF0000}, 0x12345678, 0x00785634},
      {"10 bits", 32, {0x3FF00000, 0xFFC00, 0x3FF}, 0x3FF00200, 0x00FF0080},
      {"32 bits", 32, {0xFFFFFFFF, 0, 0}, 0x80000000, 0x00800000},
      {"overlapping", 32, {0xFF, 0xFF, 0xFF}, 0x7F, 0x007F7F7F},
      {"with a gap", 32, {0x101, 0, 0}, 0x101, 0x00FF0000},
      {"beyond 16 bits", 16, {0xFF0000, 0x3E0, 0x1F}, 0xFFFF, 0x03FF},
  };
  for (const auto& c : cases) {
    const BitFieldConverter converter(c.bits, c.masks);
    uint32_t result = 0;
    converter.Convert(std::as_bytes(std::span(&c.pixel, 1)), 1,
                      std::as_writable_bytes(std::span(&result, 1)));
    EXPECT_EQ(result, c.result) << c.name;
  }
}

using Rgb = std::array<int, 3>;  // red, green, blue

Rgb Exact(int y, int u, int v) {
  const double luma = 255.0 / 219 * (y - 16);
  const double r = luma + 1.402 * 255 / 224 * (v - 128);
  const double g = luma - (0.344136 * (u - 128) + 0.714136 * (v - 128)) * 255 / 224;
  const double b = luma + 1.772 * 255 / 224 * (u - 128);
  const auto level = [](double x) {
    return static_cast<int>(std::lround(std::clamp(x, 0., 255.)));
  };
  return {level(r), level(g), level(b)};
}

TEST(Yuv, EveryLumaAndChroma_IsBt601WithinOneLevel) {
  for (int y = 0; y < 256; ++y) {
    for (int u = 0; u < 256; u += 5) {
      for (int v = 0; v < 256; v += 5) {
        const std::byte in[3] = {static_cast<std::byte>(y), static_cast<std::byte>(u),
                                 static_cast<std::byte>(v)};
        std::byte rgb[3];
        PlanarRow420Plain(&in[0], &in[1], &in[2], 1, rgb);
        const Rgb exact = Exact(y, u, v);
        for (size_t c = 0; c < 3; ++c) {
          ASSERT_NEAR(static_cast<int>(rgb[2 - c]), exact[c], 1) << y << ' ' << u << ' ' << v;
        }
      }
    }
  }
}

struct Sample {
  uint32_t x, row;
  int y, u, v;
};

TEST(Yuv, EveryLayout_TakesSamplesFromTheirPlaces) {
  // Planes whose bytes all differ: luma 0 to 15 or to 255, then the chroma planes.
  std::vector<std::byte> planar(24), planar9(16 * 16 + 2 * 16);
  for (size_t i = 0; i < 24; ++i) planar[i] = static_cast<std::byte>(i < 16 ? 100 + i : i * 8);
  for (size_t i = 0; i < planar9.size(); ++i) planar9[i] = static_cast<std::byte>(i % 200);
  const auto pair = ToBytes({100, 90, 101, 150});
  // A group of eight pixels, and half a group, in each of four rows.
  const auto group = ToBytes({90, 100, 150, 101, 95, 102, 155, 103, 104, 105, 106, 107});
  std::vector<std::byte> groups, halves;
  for (int i = 0; i < 4; ++i) {
    groups.insert(groups.end(), group.begin(), group.end());
    halves.insert(halves.end(), group.begin(), group.begin() + 6);
  }
  const struct {
    const char (&code)[5];
    uint16_t bits;
    int32_t width, height;
    std::vector<std::byte> data;
    std::vector<Sample> samples;
  } cases[] = {
      {"I420",
       12,
       4,
       4,
       planar,
       {{1, 1, 105, 128, 160}, {2, 1, 106, 136, 168}, {1, 2, 109, 144, 176}}},
      {"IYUV", 12, 4, 4, planar, {{0, 0, 100, 128, 160}, {3, 3, 115, 152, 184}}},
      {"YV12", 12, 4, 4, planar, {{1, 1, 105, 160, 128}, {1, 2, 109, 176, 144}}},
      {"YVU9", 9, 16, 16, planar9, {{3, 3, 51, 72, 56}, {4, 3, 52, 73, 57}, {3, 4, 67, 76, 60}}},
      {"IF09", 9, 16, 16, planar9, {{0, 8, 128, 80, 64}}},
      {"YUY2", 16, 2, 1, pair, {{0, 0, 100, 90, 150}, {1, 0, 101, 90, 150}}},
      {"YVYU", 16, 2, 1, pair, {{0, 0, 100, 150, 90}, {1, 0, 101, 150, 90}}},
      {"UYVY", 16, 2, 1, pair, {{0, 0, 90, 100, 101}, {1, 0, 150, 100, 101}}},
      {"cyuv", 16, 2, 1, pair, {{0, 0, 90, 100, 101}, {1, 0, 150, 100, 101}}},
      {"Y42T", 24, 2, 1, pair, {{0, 0, 90, 100, 101}, {1, 0, 150, 100, 101}}},
      {"Y211", 8, 4, 1, pair, {{1, 0, 100, 90, 150}, {2, 0, 101, 90, 150}}},
      {"Y211", 8, 2, 1, ToBytes({100, 90}), {{0, 0, 100, 90, 128}}},
      {"Y41P",
       12,
       8,
       4,
       groups,
       {{0, 1, 100, 90, 150}, {3, 1, 103, 90, 150}, {4, 1, 104, 95, 155}, {7, 3, 107, 95, 155}}},
      {"Y41T", 12, 4, 4, halves, {{2, 0, 102, 90, 150}, {3, 3, 102, 90, 150}}},
  };
  for (const auto& c : cases) {
    const Header header{
        .width = c.width, .height = c.height, .bits = c.bits, .compression = Code(c.code)};
    const ConvertedDib out = ConvertInMemory(AsBytes(header), c.data);
    ASSERT_EQ(out.result, kSuccess) << c.code;
    for (const Sample& at : c.samples) {
      const Rgb exact = Exact(at.y, at.u, at.v);
      for (size_t channel = 0; channel < 3; ++channel) {
        const size_t byte = size_t{at.row} * out.geometry.bytes_per_line + at.x * 3 + 2 - channel;
        EXPECT_NEAR(static_cast<int>(out.rows[byte]), exact[channel], 1)
            << c.code << ' ' << at.x << ',' << at.row;
      }
    }
    const Bytes cut = Bytes(c.data).first(c.data.size() - 1);
    EXPECT_EQ(ConvertInMemory(AsBytes(header), cut).result, kInvalidArgument) << c.code;
  }
}

TEST(Avx2, PlanarRow_EqualsThePlainForm) {
  if (!HasAvx2()) GTEST_SKIP() << "no AVX2";
  for (uint32_t width = 0; width < 100; ++width) {
    const auto y = Random(width, width);
    const auto u = Random((width + 1) / 2, width + 1000);
    const auto v = Random((width + 1) / 2, width + 2000);
    std::vector<std::byte> plain(width * 3), fast(width * 3);
    PlanarRow420Plain(y.data(), u.data(), v.data(), width, plain.data());
    PlanarRow420(y.data(), u.data(), v.data(), width, fast.data());
    ASSERT_EQ(plain, fast) << width;
  }
  // Every extreme of luma and chroma, where sums saturate.
  for (const int extreme : {0, 1, 15, 16, 17, 127, 128, 234, 235, 236, 254, 255}) {
    const std::vector<std::byte> level(16, static_cast<std::byte>(extreme));
    const auto u = Random(8, 7), v = Random(8, 8);
    const std::vector<std::byte> high(8, std::byte{255}), low(8, std::byte{0});
    for (const auto* chroma : {&u, &v, &high, &low}) {
      std::byte plain[48], fast[48];
      PlanarRow420Plain(level.data(), chroma->data(), high.data(), 16, plain);
      PlanarRow420Avx2(level.data(), chroma->data(), high.data(), 16, fast);
      ASSERT_TRUE(std::equal(plain, plain + 48, fast)) << extreme;
    }
  }
}

TEST(ConvertDibRows, StoppingStore_StopsTheConversion) {
  for (const auto& header : {Header{.width = 2, .height = 3},
                             Header{.width = 2, .height = 3, .bits = 8, .compression = 1},
                             Header{.width = 2, .height = 3, .bits = 32, .compression = 3}}) {
    Dib dib;
    ASSERT_EQ(AnalyzeDib(AsBytes(header), &dib), kSuccess);
    const auto bits =
        ToBytes({1, 1, 0, 0, 1, 2, 0, 0, 1, 3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
    std::vector<std::byte> scratch(8);
    int calls = 0;
    EXPECT_EQ(
        ConvertDibRows(dib, bits, scratch, [&](uint32_t, Bytes) { return ++calls < 2 ? 1 : -5; }),
        -5);
    EXPECT_EQ(calls, 2);
  }
}

/// Files that the fuzz targets found, run again.
TEST(DamagedInput, FilesOfEarlierFaults_ReadNothingOutside) {
  const std::filesystem::path root = std::filesystem::path(QUILLO_SOURCE_DIR) / "tests/corpus";
  const struct {
    const char* folder;
    void (*run)(Bytes);
  } targets[] = {{"imaging/dib", TryDib}, {"imaging/rle", TryRle}};
  int files = 0;
  for (const auto& [folder, run] : targets) {
    for (const auto& entry : std::filesystem::directory_iterator(root / folder)) {
      run(test::ReadFile(entry.path()));
      ++files;
    }
  }
  EXPECT_GT(files, 0);
}

TEST(DamagedInput, NoiseAndCutFiles_ReadNothingOutside) {
  for (uint32_t seed = 0; seed < 300; ++seed) TryRle(Random(seed * 3, seed));
  for (uint16_t bits = 1; bits <= 64; ++bits) {
    for (const uint32_t compression : {0u, 1u, 2u, 3u, Code("I420"), Code("YUY2"), Code("Y41P")}) {
      const Header header{.width = 12, .height = -8, .bits = bits, .compression = compression};
      std::vector<std::byte> input = ToBytes({52, 0});
      input.insert(input.end(), AsBytes(header).begin(), AsBytes(header).end());
      const auto noise = Random(400, bits);
      input.insert(input.end(), noise.begin(), noise.end());
      for (size_t size = 0; size < input.size(); size += 13) TryDib(Bytes(input).first(size));
      TryDib(input);
    }
  }
}

}  // namespace
}  // namespace quillo::imaging
