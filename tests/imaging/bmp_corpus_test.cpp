#include <filesystem>
#include <gtest/gtest.h>
#include <string>

#include "imaging/dib_convert.h"
#include "imaging/pixels/row_format.h"
#include "imaging/table.h"
#include "support/corpus.h"

namespace quillo::imaging {
namespace {

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
  const std::vector<TableRow> cases = ReadTable("bmp_pictures.txt");
  EXPECT_GT(cases.size(), 40u);
  if (!std::filesystem::exists(corpus / "bmp")) {
    GTEST_SKIP() << "no corpus: ../shared/corpus/bmp is absent";
  }
  for (const TableRow& c : cases) {
    const ConvertedDib converted = ConvertFile(corpus / c.fields.at(0));
    EXPECT_EQ(converted.result, c.Number(1)) << c.fields.at(0);
    EXPECT_EQ(converted.result == kSuccess ? PictureDigest(converted) : 0, c.Unsigned(2))
        << c.fields.at(0);
  }
}

}  // namespace
}  // namespace quillo::imaging
