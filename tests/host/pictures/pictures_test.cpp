#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <map>
#include <sstream>
#include <string>

#include "host/base/com_apartment.h"
#include "host/engine/raster.h"
#include "host/pictures/bmp_file.h"
#include "host/pictures/fewest_bits.h"
#include "host/pictures/gif_animation.h"
#include "host/pictures/orientation.h"
#include "support/case_table.h"
#include "support/line.h"

namespace quillo::host {
namespace {

using namespace std::string_literals;

// -- BMP files ---------------------------------------------------------------------------------

std::vector<uint16_t> HexWords(const std::string& text) {
  std::istringstream in(text);
  std::vector<uint16_t> words;
  for (uint16_t word = 0; in >> std::hex >> word;) words.push_back(word);
  return words;
}

TEST(ReadBmp, Table_GivesPixelsAndDamage_CutHeadersAreRefused) {
  test::CheckCases("host/bmp_files.txt", [](const std::vector<std::string>& fields) {
    std::vector<uint16_t> file = {'B' | 'M' << 8, 0, 0, 0, 0, 0, 0};
    const std::vector<uint16_t> header = HexWords(fields[0]), pixels = HexWords(fields[1]);
    file[5] = static_cast<uint16_t>(14 + header.size() * 2);  // where the pixels are
    file.insert(file.end(), header.begin(), header.end());
    const size_t header_bytes = file.size() * 2;
    file.insert(file.end(), pixels.begin(), pixels.end());
    const Bytes bytes = std::as_bytes(std::span(file));
    for (size_t size = 0; size < header_bytes; ++size) {
      const std::vector<std::byte> cut(bytes.begin(), bytes.begin() + static_cast<ptrdiff_t>(size));
      EXPECT_THROW(ReadBmp(cut), UnreadablePicture) << size;
    }
    try {
      const BmpPicture read = ReadBmp(bytes);
      EXPECT_EQ(IsRunLengthBmp(bytes), read.pixels.bits_per_pixel == 8);
      std::string text =
          test::Line(read.dpi.x, "dpi ", std::hex, read.pixels.red_mask, " ", read.pixels.blue_mask,
                     " ", read.pixels.width, "x", read.pixels.height);
      for (size_t at = 0; at < read.pixels.bits.size(); at += 4) {
        text += test::Line(" ", std::hex, LoadOrZero<uint32_t>(read.pixels.bits, at));
      }
      return text + (read.damage.empty() ? "" : ", " + read.damage);
    } catch (const UnreadablePicture& refused) {
      return "- "s + refused.what();
    }
  });
}

// -- Pixels of 24 bits -------------------------------------------------------------------------

/// Where a pixel is among a picture's bytes; pixels are numbered row by row.
size_t PlaceOf(const BitmapSource& picture, size_t pixel) {
  const auto width = static_cast<size_t>(picture.width);
  return pixel / width * picture.Stride() + pixel % width * 3;
}

/// A picture, rows from the top, whose pixels have the colours of `colour_of`.
template <typename ColourOf>
BitmapSource Picture(LONG width, LONG height, ColourOf colour_of) {
  BitmapSource picture;
  picture.width = width;
  picture.height = height;
  picture.bits_per_pixel = 24;
  picture.top_down = true;
  picture.bits.resize(picture.Stride() * static_cast<size_t>(height));
  for (size_t i = 0; i < static_cast<size_t>(width) * static_cast<size_t>(height); ++i) {
    const auto colour = static_cast<uint32_t>(colour_of(i));
    std::memcpy(&picture.bits[PlaceOf(picture, i)], &colour, 3);
  }
  return picture;
}

/// The colour of a pixel, 0x00RRGGBB.
uint32_t Pixel(const BitmapSource& picture, size_t pixel) {
  uint32_t colour = 0;
  std::memcpy(&colour, picture.bits.data() + PlaceOf(picture, pixel), 3);
  return colour;
}

TEST(WithFewestBits, Pixels_KeepTheirColours) {
  const struct {
    uint32_t colours;
    uint16_t bits;
  } cases[] = {{1, 1}, {2, 1}, {3, 4}, {16, 4}, {17, 8}, {256, 8}, {257, 24}};
  for (const auto& test : cases) {
    for (const size_t run : {1, 2, 7, 30}) {  // pixels of one colour, beside each other
      SCOPED_TRACE(std::to_string(test.colours) + " colours, runs of " + std::to_string(run));
      const LONG height = 11 * static_cast<LONG>(run);
      // Multiples of an odd number: all channels vary, and colours that hash alike are among them.
      const BitmapSource picture = Picture(37, height, [&](size_t i) {
        return (test.colours - 1 - i / run % test.colours) * 0x04B5D7;
      });
      const BitmapSource packed = WithFewestBits(picture);
      EXPECT_EQ(packed.bits_per_pixel, test.bits);
      EXPECT_TRUE(std::ranges::is_sorted(packed.palette));
      const PixelReader before(picture), after(packed);
      for (LONG i = 0; i < 37 * height; ++i) {
        ASSERT_EQ(after.Colour(i % 37, i / 37), before.Colour(i % 37, i / 37));
      }
    }
  }
}

// -- Orientation -------------------------------------------------------------------------------

TEST(OrientationOf, Files_GiveTheirs_CutFilesThatOrUpright) {
  test::CheckCases("host/orientation.txt", [](const std::vector<std::string>& fields) {
    const Bytes file = std::as_bytes(std::span(fields[0]));
    const auto frame = static_cast<uint32_t>(std::stoul(fields[1]));
    const Orientation whole = OrientationOf(file, frame);
    for (size_t size = 0; size < file.size(); ++size) {
      const std::vector<std::byte> copy(file.begin(), file.begin() + static_cast<ptrdiff_t>(size));
      const Orientation cut = OrientationOf(copy, frame);
      EXPECT_TRUE(cut == kUpright || cut == whole) << size << " bytes";
    }
    return std::to_string(whole);
  });
}

// Six pixels, called by letters, in two rows of three; as they are seen upright.
TEST(TurnUpright, EachOrientation_PutsFirstRowAndColumnWhereTheyBelong) {
  const char* const rows[] = {"abc/def/",  "cba/fed/",  "fed/cba/",  "def/abc/",
                              "ad/be/cf/", "da/eb/fc/", "fc/eb/da/", "cf/be/ad/"};
  for (size_t i = 0; i < std::size(rows); ++i) {
    const BitmapSource stored = Picture(3, 2, [](size_t pixel) { return 'a' + pixel; });
    const BitmapSource upright = TurnUpright(stored, static_cast<Orientation>(i + 1));
    std::string seen;
    for (size_t pixel = 0; pixel < 6; ++pixel) {
      seen += static_cast<char>(Pixel(upright, pixel));
      if ((pixel + 1) % static_cast<size_t>(upright.width) == 0) seen += '/';
    }
    EXPECT_EQ(seen, rows[i]);
    EXPECT_EQ(upright.width * upright.height, 6);
  }
}

// -- Animations --------------------------------------------------------------------------------

TEST(GifAnimation, Frames_AreDrawnOverWhatThoseBeforeThemLeft) {
  const std::map<uint32_t, char> letters{
      {0xFF0000, 'R'}, {0x00FF00, 'G'}, {0x0000FF, 'B'}, {0xFFFFFF, 'W'}, {0x000000, 'K'}};
  const ComApartment apartment;
  test::CheckCases("host/animations.txt", [&letters](const std::vector<std::string>& fields) {
    const Bytes file = std::as_bytes(std::span(fields[1]));
    for (size_t size = 0; size < file.size(); ++size) GifAnimation::Open(file.first(size));
    const PictureDecoder decoder(file);
    auto animation = GifAnimation::Open(file);
    std::string shown;
    try {
      for (;;) {
        const BitmapSource seen = animation.value().Next(decoder, 100);
        shown += shown.empty() ? "" : " ";
        for (const size_t pixel : {0, 1}) shown += letters.at(Pixel(seen, pixel));
      }
    } catch (const UnreadablePicture&) {  // after the last frame
      return shown;
    }
  });
}

}  // namespace
}  // namespace quillo::host
