#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <iomanip>
#include <string>
#include <vector>

#include "imaging/dib/bit_fields.h"
#include "imaging/dib/rle.h"
#include "imaging/dib/yuv.h"
#include "imaging/dib_convert.h"
#include "imaging/noise.h"
#include "imaging/pixels/row_format.h"
#include "support/case_table.h"
#include "support/corpus.h"
#include "support/digest.h"
#include "support/line.h"

namespace quillo::imaging {
namespace {

using test::Digest;
using test::HexBytes;

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

/// A compression by its number, or by its four characters.
uint32_t CompressionOf(const std::string& name) {
  if (name.size() < 4) return static_cast<uint32_t>(std::stoul(name));
  return LoadOrZero<uint32_t>(std::as_bytes(std::span(name)));
}

TEST(AnalyseDib, HeadersAndCompressions_GiveTheirCodes) {
  test::CheckCases("imaging/dib_headers.txt", [](const auto& fields) -> std::string {
    Header header;
    std::string compression;
    test::Scan(fields[0], header.width, header.height, header.bits, compression);
    header.compression = CompressionOf(compression);
    DibDescription dib;
    const int result = AnalyseDib(AsBytes(header), &dib);
    EXPECT_EQ(dib.bits_per_pixel != 0, result == kSuccess) << compression;
    return result == kUnsupportedFormat ? "unsupported"
           : result == kInvalidArgument ? "invalid"
                                        : std::to_string(dib.bits_per_pixel);
  });
  for (const uint32_t size : {0u, 39u}) {
    DibDescription dib;
    EXPECT_EQ(AnalyseDib(AsBytes({.size = size}), &dib), kUnsupportedFormat) << size;
  }
}

TEST(DotsPerInch, PixelsPerMetre_TruncateTowardsZero) {
  const int cases[][2] = {{3780, 96}, {23622, 600}, {-3780, -95}, {INT32_MAX, 54546085}};
  for (const auto& [per_metre, dpi] : cases) EXPECT_EQ(DotsPerInch(per_metre), dpi);
}

TEST(ReadColourTable, ShortTables_AreBlackOrGrey) {
  test::CheckCases("imaging/colour_tables.txt", [](const auto& fields) {
    size_t size = 0;
    uint32_t used = 0;
    test::Scan(fields[0], size, used);
    std::vector<std::byte> header(size);
    std::ranges::copy(AsBytes({.bits = 4, .colours_used = used}), header.begin());
    for (size_t i = 40; i < size; ++i) header[i] = static_cast<std::byte>(i - 36);
    DibDescription dib;
    EXPECT_EQ(AnalyseDib(header, &dib), kSuccess);
    std::vector<PaletteEntry> palette(dib.colours);
    ReadColourTable(header, dib, palette);
    std::string colours = std::to_string(dib.colours);
    for (const size_t i : {1, 2}) {
      const PaletteEntry& e = palette[i];
      colours += test::Line(", ", int{e.red}, ' ', int{e.green}, ' ', int{e.blue});
    }
    return colours;
  });
}

TEST(BitFieldConverter, AnyMasks_ScaleToTheRange) {
  test::CheckCases("imaging/bit_fields.txt", [](const auto& fields) {
    uint32_t bits = 0, red = 0, green = 0, blue = 0, pixel = 0, result = 0;
    test::Scan(fields[0], bits, red, green, blue, pixel);
    BitFieldConverter(bits, {red, green, blue})
        .Convert(std::as_bytes(std::span(&pixel, 1)), 1,
                 std::as_writable_bytes(std::span(&result, 1)));
    return test::Line("0x", std::hex, std::uppercase, std::setfill('0'),
                      std::setw(bits == 16 ? 4 : 8), result);
  });
}

/// Compared once with the matrix of BT.601 in full: no channel is more than a level beside it.
TEST(Yuv, EveryLumaAndChroma_IsBt601) {
  std::vector<std::byte> colours;
  for (int i = 0; i < 256 * 52 * 52; ++i) {
    const std::byte y{static_cast<uint8_t>(i)}, u{static_cast<uint8_t>(i / 256 % 52 * 5)},
        v{static_cast<uint8_t>(i / 256 / 52 * 5)};
    std::byte rgb[3];
    PlanarRow420(&y, &u, &v, 1, rgb);
    colours.insert(colours.end(), rgb, rgb + 3);
  }
  EXPECT_EQ(Digest(colours), 0x45FB5AD6u);
}

TEST(Yuv, EveryLayout_TakesSamplesFromTheirPlaces) {
  std::vector<std::byte> counted(16 * 16 + 2 * 16);
  for (size_t i = 0; i < counted.size(); ++i) counted[i] = static_cast<std::byte>(i % 200);
  test::CheckCases("imaging/yuv.txt", [&](const auto& fields) {
    Header header;
    std::string code, digits;
    size_t column = 0, row = 0;
    test::Scan(fields[0], code, header.bits, header.width, header.height, digits, column, row);
    header.compression = CompressionOf(code);
    const auto data = digits == "counted" ? counted : HexBytes(digits);
    const Bytes cut = Bytes(data).first(data.size() - 1);
    EXPECT_EQ(ConvertInMemory(AsBytes(header), cut).result, kInvalidArgument);
    const ConvertedDib out = ConvertInMemory(AsBytes(header), data);
    if (out.result != kSuccess) return test::Line("refused: ", out.result);
    const std::byte* pixel = &out.rows[row * out.geometry.bytes_per_line + column * 3];
    return test::Line(int(pixel[2]), ' ', int(pixel[1]), ' ', int(pixel[0]));
  });
}

TEST(ExpandRle, Streams_BecomeKnownRows) {
  test::CheckCases("imaging/run_lengths.txt", [](const auto& fields) {
    std::string name, digits;
    uint32_t bits = 0, width = 0, height = 0;
    test::Scan(fields[0], name, bits, width, height, digits);
    const Geometry size = *MakeGeometry(width, height, bits);
    std::vector<std::byte> rows(size.data_size), scratch(size.bytes_per_line);
    const std::vector<std::byte> stream = HexBytes(digits);
    int64_t last = -1;
    const auto store = [&](uint32_t row, Bytes data) {
      EXPECT_TRUE(row > last && row < size.height);
      last = row;
      std::ranges::copy(data, &rows[row * data.size()]);
      return kSuccess;
    };
    EXPECT_EQ(ExpandRle(stream, bits, width, height, scratch, store), kSuccess) << name;
    return test::Line("0x", std::hex, Digest(rows));
  });
}

TEST(ConvertDibRows, StoppingStore_StopsTheConversion) {
  for (const auto& header : {Header{.width = 2, .height = 3},
                             Header{.width = 2, .height = 3, .bits = 8, .compression = 1},
                             Header{.width = 2, .height = 3, .bits = 32, .compression = 3}}) {
    DibDescription dib;
    ASSERT_EQ(AnalyseDib(AsBytes(header), &dib), kSuccess);
    auto bits = HexBytes("01010000010200000103");
    bits.resize(24);
    std::vector<std::byte> scratch(8);
    int calls = 0;
    const auto store = [&](uint32_t, Bytes) { return ++calls < 2 ? kSuccess : kFileError; };
    EXPECT_EQ(ConvertDibRows(dib, bits, scratch, store), kFileError);
    EXPECT_EQ(calls, 2);
  }
}

TEST(ConvertDibRows, DamagedInput_ReadsNothingOutside) {
  for (uint16_t bits = 1; bits <= 64; ++bits) {
    for (const char* compression : {"0", "1", "2", "3", "I420", "YUY2", "Y41P"}) {
      for (const int32_t width : {0, 12}) {
        const Header header{
            .width = width, .height = -8, .bits = bits, .compression = CompressionOf(compression)};
        for (size_t size = 0; size <= 400; size += size < 50 ? 7 : 50) {
          // Blocks of their own end where a sanitizer sees reads beyond them.
          const std::vector<std::byte> input = Noise(size, bits);
          const ConvertedDib out = ConvertInMemory(AsBytes(header), input);
          EXPECT_TRUE(out.result == kSuccess || out.result == kInvalidArgument ||
                      out.result == kUnsupportedFormat)
              << out.result;
          ConvertInMemory(Bytes(input).first(std::min<size_t>(size, 39)), input);
        }
      }
    }
  }
}

constexpr size_t kFileHeader = 14;

/// Converts the DIB of a file. One without a file header has its bits right after the colour table.
ConvertedDib ConvertFile(const std::filesystem::path& path) {
  const std::vector<std::byte> file = test::ReadFile(path);
  const Bytes whole = file;
  const size_t start = path.extension() == ".dib" ? 0 : std::min(kFileHeader, whole.size());
  const Bytes dib = whole.subspan(start);
  size_t bits_at = LoadOrZero<uint32_t>(whole, 10) - kFileHeader;
  if (start == 0) {
    DibDescription description;
    if (AnalyseDib(dib, &description) != kSuccess) return {};
    bits_at = description.colour_table + description.colours * description.colour_entry;
  }
  bits_at = std::min(bits_at, dib.size());
  return ConvertInMemory(dib.first(bits_at), dib.subspan(bits_at));
}

/// The colours of a converted bitmap, top row first.
uint32_t PictureDigest(const ConvertedDib& converted) {
  const Geometry& size = converted.geometry;
  const RowFormat format{size.bits_per_pixel,
                         size.bits_per_pixel <= 8 ? kOrderPalette : kOrderColour,
                         converted.palette};
  const bool top_first = converted.dib.negative_height != IsYuv(converted.dib.layout);
  std::vector<Colour16> colours(size.width);
  std::vector<PaletteEntry> picture;
  for (uint32_t y = 0; y < size.height; ++y) {
    const uint32_t row = top_first ? y : size.height - 1 - y;
    DecodeRow(format, converted.rows.data() + uint64_t{row} * size.bytes_per_line, 0, colours);
    for (const Colour16 colour : colours) picture.push_back(ToEntry(colour));
  }
  return Digest(std::as_bytes(std::span(picture)));
}

/// Compared once with the reference pictures of the files; the table holds what came out.
TEST(BmpCorpus, EveryFile_BecomesItsPictureOrIsRefused) {
  const std::filesystem::path corpus =
      std::filesystem::path(QUILLO_SOURCE_DIR) / "../shared/corpus";
  if (!std::filesystem::exists(corpus / "bmp")) {
    GTEST_SKIP() << "no corpus: ../shared/corpus/bmp is absent";
  }
  test::CheckCases("imaging/bmp_pictures.txt", [&corpus](const auto& fields) {
    const ConvertedDib converted = ConvertFile(corpus / fields[0]);
    const uint32_t digest = converted.result == kSuccess ? PictureDigest(converted) : 0;
    return test::Line(converted.result, " 0x", std::hex, digest);
  });
}

}  // namespace
}  // namespace quillo::imaging
