// Converts the bitmaps of the corpus beside the checkout and compares them with their pictures.
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <png.h>
#include <sstream>
#include <string>

#include "imaging/damaged_input.h"
#include "imaging/pixels/row_format.h"
#include "support/corpus.h"

namespace quillo::imaging {
namespace {

namespace fs = std::filesystem;

const fs::path kCorpus = fs::path(QUILLO_SOURCE_DIR) / "../shared/corpus";

struct Picture {
  uint32_t width = 0;
  uint32_t height = 0;
  std::vector<uint8_t> rgba;  // top row first
};

/// Reads a PNG's samples as they are, without any gamma; 8 bits each.
std::optional<Picture> ReadPng(const fs::path& path) {
  const std::unique_ptr<FILE, int (*)(FILE*)> file(fopen(path.c_str(), "rb"), fclose);
  if (!file) return std::nullopt;
  png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  Picture picture;
  if (setjmp(png_jmpbuf(png)) == 0) {
    png_init_io(png, file.get());
    png_set_filler(png, 255, PNG_FILLER_AFTER);
    png_read_png(png, info,
                 PNG_TRANSFORM_EXPAND | PNG_TRANSFORM_SCALE_16 | PNG_TRANSFORM_GRAY_TO_RGB,
                 nullptr);
    picture.width = png_get_image_width(png, info);
    picture.height = png_get_image_height(png, info);
    png_bytepp rows = png_get_rows(png, info);
    for (uint32_t y = 0; y < picture.height; ++y) {
      picture.rgba.insert(picture.rgba.end(), rows[y], rows[y] + size_t{picture.width} * 4);
    }
  }
  png_destroy_read_struct(&png, &info, nullptr);
  if (picture.rgba.empty()) return std::nullopt;
  return picture;
}

constexpr size_t kFileHeader = 14;

/// Converts the DIB of a file, in blocks that end where header and file end. A file without a file
/// header is a DIB with its bits right behind the colour table.
ConvertedDib ConvertFile(const fs::path& path) {
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
  return ConvertInMemory(CopyOf(dib.first(bits_at)), CopyOf(dib.subspan(bits_at)));
}

Picture Show(const ConvertedDib& converted) {
  const Geometry& size = converted.geometry;
  Picture picture{size.width, size.height, {}};
  const RowFormat format{size.bits_per_pixel, size.bits_per_pixel <= 8 ? 0u : 1u,
                         converted.palette};
  std::vector<Colour16> colours(size.width);
  for (uint32_t y = 0; y < size.height; ++y) {
    const bool top_first = converted.dib.negative_height != IsYuv(converted.dib.layout);
    const uint32_t row = top_first ? y : size.height - 1 - y;
    DecodeRow(format, converted.rows.data() + uint64_t{row} * size.bytes_per_line, 0, colours);
    for (const Colour16 colour : colours) {
      const PaletteEntry entry = ToEntry(colour);
      picture.rgba.insert(picture.rgba.end(), {entry.red, entry.green, entry.blue, 255});
    }
  }
  return picture;
}

// What is not converted, and why.
const std::map<std::string, int> kRefused = {
    {"bmp/bmpsuite/b/reallybig.bmp", kInvalidArgument},       // far fewer bits than announced
    {"bmp/bmpsuite/b/shortfile.bmp", kInvalidArgument},       // bits cut off
    {"bmp/bmpsuite/q/pal1huffmsb.bmp", kUnsupportedFormat},   // Huffman coding of OS/2
    {"bmp/zune/pal1hufflsb.bmp", kUnsupportedFormat},         //
    {"bmp/bmpsuite/q/pal8os2v2-16.bmp", kUnsupportedFormat},  // a header of 16 bytes
    {"bmp/bmpsuite/q/rgb24rle24.bmp", kUnsupportedFormat},    // run lengths of 24 bits
    {"bmp/bmpsuite/x/ba-bm.bmp", kUnsupportedFormat},         // an array of bitmaps
    {"bmp/libgd/truncated.bmp", kUnsupportedFormat},          // ends inside the header
};

// Its samples are linear fixed-point numbers, which the kernel keeps as they are.
constexpr std::string_view kNotComparable = "bmp/bmpsuite/q/rgba64.bmp";

/// The largest difference of a channel; pixels that the reference leaves transparent do not count.
int Difference(const Picture& picture, const Picture& reference) {
  if (picture.width != reference.width || picture.height != reference.height) return 256;
  int largest = 0;
  for (size_t i = 0; i < picture.rgba.size(); ++i) {
    if (reference.rgba[i | 3] == 0 || i % 4 == 3) continue;
    largest = std::max(largest, std::abs(picture.rgba[i] - reference.rgba[i]));
  }
  return largest;
}

/// The smallest difference to any of the references, which are separated by semicolons.
int DifferenceToBest(const Picture& picture, const std::string& references) {
  int best = 256;
  std::istringstream alternatives(references);
  for (std::string name; std::getline(alternatives, name, ';');) {
    const std::optional<Picture> reference = ReadPng(kCorpus / name);
    if (reference) best = std::min(best, Difference(picture, *reference));
  }
  return best;
}

TEST(BmpCorpus, EveryFile_EqualsItsPictureOrIsRefused) {
  std::ifstream table(kCorpus / "bmp/REFERENCES.tsv");
  if (!table) {
    std::cout << "no corpus beside the checkout: its bitmaps were not converted\n";
    return;
  }
  int compared = 0;
  std::string line;
  std::getline(table, line);
  while (std::getline(table, line)) {
    std::istringstream fields(line);
    std::string name, references;
    std::getline(fields, name, '\t');
    std::getline(fields, references, '\t');
    const ConvertedDib converted = ConvertFile(kCorpus / name);
    const auto refused = kRefused.find(name);
    EXPECT_EQ(converted.result, refused != kRefused.end() ? refused->second : kSuccess) << name;
    if (converted.result != kSuccess || references.empty() || name == kNotComparable) continue;
    // 16-bit bitmaps keep 5 bits of a channel, so they may be half of such a level off.
    const int tolerance = converted.geometry.bits_per_pixel == 16 ? 4 : 1;
    EXPECT_LE(DifferenceToBest(Show(converted), references), tolerance) << name;
    ++compared;
  }
  EXPECT_GT(compared, 40);
}

}  // namespace
}  // namespace quillo::imaging
