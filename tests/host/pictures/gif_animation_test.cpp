#include "host/pictures/gif_animation.h"

#include <gtest/gtest.h>
#include <string>

#include "host/base/com_apartment.h"

namespace quillo::host {
namespace {

using namespace std::string_literals;

/// A frame of one pixel: where it is, its colour, what becomes of it.
std::string Pixel(char x, unsigned color, char disposal, bool transparent = false) {
  const unsigned codes = 4 | color << 3 | 5 << 6;  // clear, colour, end: three bits each
  return "\x21\xF9\x04"s + static_cast<char>(disposal << 2 | (transparent ? 1 : 0)) + "\0\0\1\0"s +
         "\x2C"s + x + "\0\0\0\1\0\1\0\0"s + "\2\2"s + static_cast<char>(codes) +
         static_cast<char>(codes >> 8) + "\0"s;
}

TEST(GifAnimation, Frames_AreDrawnOverWhatThoseBeforeThemLeft) {
  constexpr unsigned kRed = 0, kClear = 1, kGreen = 2, kBlue = 3;
  const struct {
    std::string frame;
    std::string shown;  // of two pixels
  } kFrames[] = {{Pixel(0, kRed, 0), "RW"},  {Pixel(1, kGreen, 2), "RG"},
                 {Pixel(0, kBlue, 3), "BW"}, {Pixel(1, kClear, 1, true), "RW"},
                 {Pixel(1, kBlue, 1), "RB"}, {Pixel(5, kBlue, 1), "RB"}};
  std::string file =
      "GIF89a\2\0\1\0\x81\0\0"s + "\xFF\0\0"s + "\0\0\0"s + "\0\xFF\0"s + "\0\0\xFF"s;
  for (const auto& f : kFrames) file += f.frame;
  file += ';';
  const Bytes bytes = std::as_bytes(std::span(file));

  const ComApartment apartment;
  const PictureDecoder decoder(bytes);
  auto animation = GifAnimation::Open(bytes);
  ASSERT_TRUE(animation);
  for (const auto& f : kFrames) {
    const BitmapSource seen = animation->Next(decoder, 100);
    std::string colors;
    for (size_t i = 0; i < 2; ++i) {
      switch (LoadOrZero<uint32_t>(seen.bits, 3 * i) & 0xFFFFFF) {
        case 0xFF0000:
          colors += 'R';
          break;
        case 0x00FF00:
          colors += 'G';
          break;
        case 0x0000FF:
          colors += 'B';
          break;
        case 0xFFFFFF:
          colors += 'W';
          break;
        default:
          colors += '?';
      }
    }
    EXPECT_EQ(colors, f.shown) << &f - kFrames;
  }
  EXPECT_THROW(animation->Next(decoder, 100), UnreadablePicture);

  for (size_t size = 0; size < bytes.size(); ++size) GifAnimation::Open(bytes.first(size));
}

}  // namespace
}  // namespace quillo::host
