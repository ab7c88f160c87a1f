#include "host/pictures/orientation.h"

#include <gtest/gtest.h>
#include <string>

namespace quillo::host {
namespace {

using namespace std::string_literals;

Orientation Read(const std::string& file, uint32_t frame = 0) {
  return OrientationOf({reinterpret_cast<const std::byte*>(file.data()), file.size()}, frame);
}

// Header, then a directory of two entries: a width, and the orientation 6; then the next one's
// offset.
const std::string kLittleTiff =
    "II*\0\x08\0\0\0\x02\0"
    "\x00\x01\x03\0\x01\0\0\0\x64\0\0\0"
    "\x12\x01\x03\0\x01\0\0\0\x06\0\0\0"
    "\0\0\0\0"s;
const std::string kBigTiff =
    "MM\0*\0\0\0\x08\0\x01"
    "\x01\x12\0\x03\0\0\0\x01\0\x08\0\0"
    "\0\0\0\0"s;
// Two directories: without an orientation, and with 3.
const std::string kTwoFrames =
    "II*\0\x08\0\0\0\0\0\x0E\0\0\0\x01\0"
    "\x12\x01\x03\0\x01\0\0\0\x03\0\0\0"
    "\0\0\0\0"s;
// A directory that follows itself.
const std::string kLoop = "II*\0\x08\0\0\0\0\0\x08\0\0\0"s;

const std::string kJpeg =
    "\xFF\xD8\xFF\xE0\0\x04JF\xFF\xE1\0\x30"
    "Exif\0\0"s +
    kLittleTiff;
const std::string kPng =
    "\x89PNG\r\n\x1A\n\0\0\0\x01tEXt.CRC1\0\0\0\x1A"
    "eXIf"s +
    kBigTiff;

TEST(OrientationOf, Files_GiveTheirOrUpright) {
  const struct {
    std::string file;
    uint32_t frame;
    Orientation orientation;
  } cases[] = {
      {kLittleTiff, 0, 6},
      {kBigTiff, 0, 8},
      {kTwoFrames, 0, 1},
      {kTwoFrames, 1, 3},
      {kTwoFrames, 2, 1},
      {kLoop, 1000, 1},
      {kJpeg, 0, 6},
      {kPng, 0, 8},
      {"GIF89a", 0, 1},
      {"", 0, 1},
      {"\xFF\xD8", 0, 1},
      {"\x89PNG", 0, 1},
      {"\xFF\xD8\xFF\xDA" + kJpeg.substr(2), 0, 1},
  };
  for (const auto& test : cases) {
    EXPECT_EQ(Read(test.file, test.frame), test.orientation) << &test - cases;
  }
}

TEST(OrientationOf, EveryTruncation_IsUprightOrRight) {
  for (const std::string& file : {kLittleTiff, kBigTiff, kJpeg, kPng}) {
    const Orientation whole = Read(file);
    for (size_t size = 0; size < file.size(); ++size) {
      const Orientation cut = Read(file.substr(0, size));
      EXPECT_TRUE(cut == kUpright || cut == whole) << size;
    }
  }
}

// Six pixels, called by letters, in two rows of three; as they are seen upright.
TEST(TurnUpright, EachOrientation_PutsFirstRowAndColumnWhereTheyBelong) {
  const struct {
    Orientation orientation;
    const char* rows;
    LONG width;
  } cases[] = {{1, "abcdef", 3}, {2, "cbafed", 3}, {3, "fedcba", 3}, {4, "defabc", 3},
               {5, "adbecf", 2}, {6, "daebfc", 2}, {7, "fcebda", 2}, {8, "cfbead", 2}};
  for (const auto& test : cases) {
    BitmapSource stored;
    stored.width = 3;
    stored.height = 2;
    stored.bits_per_pixel = 24;
    stored.top_down = true;
    stored.bits.resize(stored.Stride() * 2);
    for (size_t i = 0; i < 6; ++i) {
      stored.bits[i / 3 * stored.Stride() + i % 3 * 3] = static_cast<std::byte>('a' + i);
    }
    const BitmapSource upright = TurnUpright(stored, test.orientation);
    EXPECT_EQ(upright.width, test.width);
    EXPECT_EQ(upright.height, 6 / test.width);
    std::string rows;
    for (LONG y = 0; y < upright.height; ++y) {
      for (LONG x = 0; x < upright.width; ++x) {
        rows += static_cast<char>(
            upright.bits[static_cast<size_t>(y) * upright.Stride() + static_cast<size_t>(x) * 3]);
      }
    }
    EXPECT_EQ(rows, test.rows) << test.orientation;
  }
}

}  // namespace
}  // namespace quillo::host
