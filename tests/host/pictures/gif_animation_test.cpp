#include "host/pictures/gif_animation.h"

#include <gtest/gtest.h>
#include <map>
#include <string>

#include "host/base/com_apartment.h"
#include "tests/host/pictures/picture24.h"

namespace quillo::host {
namespace {

using namespace std::string_literals;

/// A frame of one pixel: where it is, its colour, what becomes of it.
std::string FrameOf(char x, unsigned colour, char disposal, bool transparent = false) {
  const unsigned codes = 4 | colour << 3 | 5 << 6;  // clear, colour, end: three bits each
  return "\x21\xF9\x04"s + static_cast<char>(disposal << 2 | (transparent ? 1 : 0)) + "\0\0\1\0"s +
         "\x2C"s + x + "\0\0\0\1\0\1\0\0"s + "\2\2"s + static_cast<char>(codes) +
         static_cast<char>(codes >> 8) + "\0"s;
}

TEST(GifAnimation, Frames_AreDrawnOverWhatThoseBeforeThemLeft) {
  constexpr unsigned kRed = 0, kClear = 1, kGreen = 2, kBlue = 3;
  const struct {
    std::string frame;
    std::string shown;  // of two pixels
  } kFrames[] = {{FrameOf(0, kRed, 0), "RW"},  {FrameOf(1, kGreen, 2), "RG"},
                 {FrameOf(0, kBlue, 3), "BW"}, {FrameOf(1, kClear, 1, true), "RW"},
                 {FrameOf(1, kBlue, 1), "RB"}, {FrameOf(5, kBlue, 1), "RB"}};
  std::string file =
      "GIF89a\2\0\1\0\x81\0\0"s + "\xFF\0\0"s + "\0\0\0"s + "\0\xFF\0"s + "\0\0\xFF"s;
  for (const auto& f : kFrames) file += f.frame;
  file += ';';
  const Bytes bytes = std::as_bytes(std::span(file));

  const std::map<uint32_t, char> kLetters{
      {0xFF0000, 'R'}, {0x00FF00, 'G'}, {0x0000FF, 'B'}, {0xFFFFFF, 'W'}, {0x000000, 'K'}};
  const ComApartment apartment;
  const PictureDecoder decoder(bytes);
  auto animation = GifAnimation::Open(bytes);
  ASSERT_TRUE(animation);
  for (const auto& f : kFrames) {
    const BitmapSource seen = animation->Next(decoder, 100);
    std::string colours;
    for (LONG i = 0; i < 2; ++i) colours += kLetters.at(Pixel(seen, i));
    EXPECT_EQ(colours, f.shown) << &f - kFrames;
  }
  EXPECT_THROW(animation->Next(decoder, 100), UnreadablePicture);

  for (size_t size = 0; size < bytes.size(); ++size) GifAnimation::Open(bytes.first(size));
}

}  // namespace
}  // namespace quillo::host
