#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <gtest/gtest.h>
#include <vector>

#include "imaging/damaged_input.h"
#include "imaging/dib/bit_fields.h"
#include "imaging/dib/yuv.h"
#include "imaging/noise.h"
#include "support/corpus.h"

namespace quillo::imaging {
namespace {

std::vector<std::byte> ToBytes(std::initializer_list<int> values) {
  std::vector<std::byte> bytes;
  for (const int value : values) bytes.push_back(static_cast<std::byte>(value));
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
  int32_t pels[2] = {};
  uint32_t colours_used = 0;
  uint32_t colours_important = 0;
};
static_assert(sizeof(Header) == 40);

Bytes AsBytes(const Header& header) { return std::as_bytes(std::span(&header, 1)); }

constexpr uint32_t Code(const char (&name)[5]) {
  uint32_t code = 0;
  for (int i = 3; i >= 0; --i) code = code << 8 | static_cast<uint8_t>(name[i]);
  return code;
}

TEST(AnalyseDib, HeadersAndCompressions_GiveTheirCodes) {
  constexpr int kNo = kUnsupportedFormat;
  struct {
    int32_t width, height;
    uint16_t bits;
    uint32_t compression;
    int result;  // bits per pixel of the bitmap, or the code
  } const cases[] = {{1, 1, 24, 0, 24},
                     {1, 1, 9, 0, kNo},
                     {1, 1, 0, 0, kNo},
                     {1, 1, 7, 0, 7},
                     {-1, 1, 24, 0, kInvalidArgument},
                     {1, INT32_MIN, 24, 0, 24},
                     {1, 1, 8, 1, 8},
                     {1, 1, 4, 1, kNo},
                     {1, 1, 4, 2, 4},
                     {1, 1, 16, 3, 16},
                     {1, 1, 24, 3, kNo},
                     {1, 1, 0, 4, kNo},
                     {1, 1, 0, 5, kNo},
                     {1, 1, 32, 6, kNo},
                     {16, 32, 9, Code("YVU9"), 24},
                     {24, 32, 9, Code("IF09"), kNo},
                     {4, -8, 12, Code("I420"), 24},
                     {6, 8, 12, Code("I420"), kNo},
                     {4, 6, 12, Code("IYUV"), kNo},
                     {4, 4, 24, Code("YV12"), kNo},
                     {3, 1, 16, Code("cyuv"), kNo},
                     {2, 1, 16, Code("Y42T"), 24},
                     {4, 2, 12, Code("Y41T"), kNo},
                     {1, 1, 24, Code("MJPG"), 24},
                     {1, 1, 24, Code("dmb1"), 24},
                     {1, 1, 24, Code("DIVX"), kNo}};
  for (const auto& c : cases) {
    const Header header{
        .width = c.width, .height = c.height, .bits = c.bits, .compression = c.compression};
    DibDescription dib;
    EXPECT_EQ(AnalyseDib(AsBytes(header), &dib), c.result > 0 ? kSuccess : c.result)
        << c.width << 'x' << c.height << 'x' << c.bits << ' ' << std::hex << c.compression;
    EXPECT_EQ(dib.bits_per_pixel, static_cast<uint32_t>(std::max(c.result, 0))) << c.bits;
  }
  for (const uint32_t size : {0u, 39u}) {
    DibDescription dib;
    EXPECT_EQ(AnalyseDib(AsBytes({.size = size}), &dib), kNo) << size;
  }
}

TEST(DotsPerInch, PixelsPerMetre_TruncateTowardsZero) {
  const int cases[][2] = {{3780, 96}, {23622, 600}, {-3780, -95}, {INT32_MAX, 54546085}};
  for (const auto& [per_metre, dpi] : cases) EXPECT_EQ(DotsPerInch(per_metre), dpi);
}

TEST(ReadColourTable, ShortTables_AreBlackOrGrey) {
  struct {
    size_t header_size;
    uint32_t colours_used, colours;
    PaletteEntry second, third;
  } const cases[] = {{104, 0, 16, {8, 9, 10, 0}, {12, 13, 14, 0}},
                     {48, 0, 16, {8, 9, 10, 0}, {0, 0, 0, 0}},
                     {44, 0, 16, {17, 17, 17, 0}, {34, 34, 34, 0}},  // one entry is no table
                     {104, 3, 3, {8, 9, 10, 0}, {12, 13, 14, 0}},
                     {104, 0xFFFFFFFF, 16, {8, 9, 10, 0}, {12, 13, 14, 0}}};
  for (const auto& c : cases) {
    std::vector<std::byte> header(c.header_size);
    std::ranges::copy(AsBytes({.bits = 4, .colours_used = c.colours_used}), header.begin());
    for (size_t i = 40; i < header.size(); ++i) header[i] = static_cast<std::byte>(i - 36);
    DibDescription dib;
    ASSERT_EQ(AnalyseDib(header, &dib), kSuccess);
    EXPECT_EQ(dib.colours, c.colours) << c.header_size;
    std::vector<PaletteEntry> palette(dib.colours);
    ReadColourTable(header, dib, palette);
    EXPECT_EQ(palette[1], c.second) << c.header_size;
    EXPECT_EQ(palette[2], c.third) << c.header_size;
  }
}

TEST(BitFieldConverter, AnyMasks_ScaleToTheRange) {
  struct {
    uint32_t bits;
    ColourMasks masks;
    uint32_t pixel, result;
  } const cases[] = {{16, {0x7C00, 0x3E0, 0x1F}, 0xFFFF, 0xFFFF},
                     {16, {0xF800, 0x7E0, 0x1F}, 0x07E0, 0x03E0},
                     {16, {0xF800, 0x7E0, 0x1F}, 0x0020, 0x0000},
                     {16, {0xF00, 0xF0, 0xF}, 0x0F0F, 0x7C1F},
                     {16, {4, 2, 1}, 0x0005, 0x7C1F},
                     {16, {0, 0, 0}, 0xFFFF, 0},
                     {32, {0xFF0000, 0xFF00, 0xFF}, 0x12345678, 0x12345678},
                     {32, {0xFF, 0xFF00, 0xFF0000}, 0x12345678, 0x00785634},
                     {32, {0x3FF00000, 0xFFC00, 0x3FF}, 0x3FF00200, 0x00FF0080},
                     {32, {0xFFFFFFFF, 0, 0}, 0x80000000, 0x00800000},
                     {32, {0xFF, 0xFF, 0xFF}, 0x7F, 0x007F7F7F},
                     {32, {0x101, 0, 0}, 0x101, 0x00FF0000},
                     {16, {0xFF0000, 0x3E0, 0x1F}, 0xFFFF, 0x03FF}};
  for (const auto& c : cases) {
    uint32_t result = 0;
    BitFieldConverter(c.bits, c.masks)
        .Convert(std::as_bytes(std::span(&c.pixel, 1)), 1,
                 std::as_writable_bytes(std::span(&result, 1)));
    EXPECT_EQ(result, c.result) << std::hex << c.pixel << " becomes " << result;
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
        PlanarRow420(&in[0], &in[1], &in[2], 1, rgb);
        const Rgb exact = Exact(y, u, v);
        for (size_t c = 0; c < 3; ++c) {
          ASSERT_NEAR(static_cast<int>(rgb[2 - c]), exact[c], 1) << y << ' ' << u << ' ' << v;
        }
      }
    }
  }
}

TEST(Yuv, EveryLayout_TakesSamplesFromTheirPlaces) {
  // Planes whose bytes all differ: luma 0 to 15 or to 255, then the chroma planes.
  std::vector<std::byte> planar(24), planar9(16 * 16 + 2 * 16);
  for (size_t i = 0; i < 24; ++i) planar[i] = static_cast<std::byte>(i < 16 ? 100 + i : i * 8);
  for (size_t i = 0; i < planar9.size(); ++i) planar9[i] = static_cast<std::byte>(i % 200);
  const auto pair = ToBytes({100, 90, 101, 150}), half_pair = ToBytes({100, 90});
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
    const std::vector<std::byte>& data;
    uint32_t x, row;
    int y, u, v;  // the sample that is expected there
  } cases[] = {{"I420", 12, 4, 4, planar, 2, 1, 106, 136, 168},
               {"IYUV", 12, 4, 4, planar, 1, 2, 109, 144, 176},
               {"YV12", 12, 4, 4, planar, 1, 2, 109, 176, 144},
               {"YVU9", 9, 16, 16, planar9, 4, 3, 52, 73, 57},
               {"YVU9", 9, 16, 16, planar9, 3, 4, 67, 76, 60},
               {"IF09", 9, 16, 16, planar9, 0, 8, 128, 80, 64},
               {"YUY2", 16, 2, 1, pair, 1, 0, 101, 90, 150},
               {"YVYU", 16, 2, 1, pair, 1, 0, 101, 150, 90},
               {"UYVY", 16, 2, 1, pair, 1, 0, 150, 100, 101},
               {"cyuv", 16, 2, 1, pair, 1, 0, 150, 100, 101},
               {"Y42T", 24, 2, 1, pair, 0, 0, 90, 100, 101},
               {"Y211", 8, 4, 1, pair, 1, 0, 100, 90, 150},
               {"Y211", 8, 4, 1, pair, 2, 0, 101, 90, 150},
               {"Y211", 8, 2, 1, half_pair, 0, 0, 100, 90, 128},
               {"Y41P", 12, 8, 4, groups, 3, 1, 103, 90, 150},
               {"Y41P", 12, 8, 4, groups, 4, 1, 104, 95, 155},
               {"Y41P", 12, 8, 4, groups, 7, 3, 107, 95, 155},
               {"Y41T", 12, 4, 4, halves, 3, 3, 102, 90, 150}};
  for (const auto& c : cases) {
    const Header header{
        .width = c.width, .height = c.height, .bits = c.bits, .compression = Code(c.code)};
    const ConvertedDib out = ConvertInMemory(AsBytes(header), c.data);
    ASSERT_EQ(out.result, kSuccess) << c.code;
    const Rgb exact = Exact(c.y, c.u, c.v);
    for (size_t channel = 0; channel < 3; ++channel) {
      const size_t byte = size_t{c.row} * out.geometry.bytes_per_line + c.x * 3 + 2 - channel;
      EXPECT_NEAR(static_cast<int>(out.rows[byte]), exact[channel], 1)
          << c.code << ' ' << c.x << ',' << c.row;
    }
    const Bytes cut = Bytes(c.data).first(c.data.size() - 1);
    EXPECT_EQ(ConvertInMemory(AsBytes(header), cut).result, kInvalidArgument) << c.code;
  }
}

TEST(ConvertDibRows, StoppingStore_StopsTheConversion) {
  for (const auto& header : {Header{.width = 2, .height = 3},
                             Header{.width = 2, .height = 3, .bits = 8, .compression = 1},
                             Header{.width = 2, .height = 3, .bits = 32, .compression = 3}}) {
    DibDescription dib;
    ASSERT_EQ(AnalyseDib(AsBytes(header), &dib), kSuccess);
    auto bits = ToBytes({1, 1, 0, 0, 1, 2, 0, 0, 1, 3});
    bits.resize(24);
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
  const std::pair<const char*, void (*)(Bytes)> targets[] = {{"imaging/dib", TryDib},
                                                             {"imaging/rle", TryRle}};
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
  for (uint32_t seed = 0; seed < 600; ++seed) {
    std::vector<std::byte> input = Noise(5 + seed, seed);
    // Small numbers alone are mostly escapes: ends of lines, positions and short literals.
    if (seed % 2 != 0) std::ranges::for_each(input, [](std::byte& b) { b &= std::byte{7}; });
    TryRle(input);
  }
  for (uint16_t bits = 1; bits <= 64; ++bits) {
    for (const uint32_t compression : {0u, 1u, 2u, 3u, Code("I420"), Code("YUY2"), Code("Y41P")}) {
      const Header header{.width = 12, .height = -8, .bits = bits, .compression = compression};
      std::vector<std::byte> input = ToBytes({52, 0});
      input.insert(input.end(), AsBytes(header).begin(), AsBytes(header).end());
      const auto noise = Noise(400, bits);
      input.insert(input.end(), noise.begin(), noise.end());
      for (size_t size = 0; size < input.size(); size += 13) TryDib(Bytes(input).first(size));
      TryDib(input);
    }
  }
}

}  // namespace
}  // namespace quillo::imaging
