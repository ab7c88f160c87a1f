#include "host/pictures/gif_animation.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace quillo::host {

namespace {

constexpr uint8_t kExtension = 0x21;
constexpr uint8_t kGraphicControl = 0xF9;
constexpr uint8_t kImage = 0x2C;

/// Reads a file's blocks in turn; past its end everything is 0.
class Blocks {
 public:
  explicit Blocks(Bytes file) : rest_(file) {}

  template <typename T>
  T Take() {
    const auto value = LoadOrZero<T>(rest_);
    Skip(sizeof(T));
    return value;
  }
  void Skip(size_t size) { rest_ = rest_.subspan(std::min(size, rest_.size())); }
  void SkipSubBlocks() {
    while (const auto size = Take<uint8_t>()) Skip(size);
  }
  /// Skips the colour table that the flags before it announce.
  void SkipColourTable(uint8_t flags) {
    if ((flags & 0x80) != 0) Skip(size_t{3} << ((flags & 7) + 1));
  }

 private:
  Bytes rest_;
};

void FillWhite(BitmapSource& canvas, RECT area) {
  const auto left = static_cast<size_t>(std::min(area.left, canvas.width));
  const auto right = static_cast<size_t>(std::min(area.right, canvas.width));
  for (LONG y = area.top; y < std::min(area.bottom, canvas.height); ++y) {
    std::byte* row = &canvas.bits[canvas.Stride() * static_cast<size_t>(y)];
    std::memset(row + 3 * left, 0xFF, 3 * (right - left));
  }
}

}  // namespace

std::optional<GifAnimation> GifAnimation::Open(Bytes file) {
  if (file.size() < 13 || std::memcmp(file.data(), "GIF8", 4) != 0) return std::nullopt;
  GifAnimation animation;
  Blocks blocks(file.subspan(6));
  animation.screen_.cx = blocks.Take<uint16_t>();
  animation.screen_.cy = blocks.Take<uint16_t>();
  const auto screen_flags = blocks.Take<uint8_t>();
  blocks.Skip(2);  // background colour, which viewers ignore; aspect ratio
  blocks.SkipColourTable(screen_flags);

  Disposal disposal = Disposal::kNone;
  for (auto kind = blocks.Take<uint8_t>(); kind == kExtension || kind == kImage;
       kind = blocks.Take<uint8_t>()) {
    if (kind == kExtension) {
      if (blocks.Take<uint8_t>() == kGraphicControl) {
        const auto control = blocks.Take<uint16_t>();  // its size, its flags
        disposal = static_cast<Disposal>(control >> 10 & 3);
        blocks.Skip(std::max(control & 0xFF, 1) - 1);
      }
      blocks.SkipSubBlocks();
      continue;
    }
    RECT area{blocks.Take<uint16_t>(), blocks.Take<uint16_t>(), 0, 0};
    area.right = area.left + blocks.Take<uint16_t>();
    area.bottom = area.top + blocks.Take<uint16_t>();
    blocks.SkipColourTable(blocks.Take<uint8_t>());
    blocks.Skip(1);  // width of the codes
    blocks.SkipSubBlocks();
    animation.frames_.push_back({area, std::exchange(disposal, Disposal::kNone)});
  }
  if (animation.frames_.empty()) return std::nullopt;
  // Viewers enlarge a screen that is too small for what it begins with.
  const RECT first = animation.frames_.front().area;
  animation.screen_.cx = std::max(animation.screen_.cx, first.right);
  animation.screen_.cy = std::max(animation.screen_.cy, first.bottom);
  return animation;
}

BitmapSource GifAnimation::Next(const PictureDecoder& decoder, uint64_t max_pixels) {
  if (next_ == frames_.size()) throw UnreadablePicture("is missing");
  if (next_ == 0) {
    canvas_ =
        BlankPicture(static_cast<UINT>(screen_.cx), static_cast<UINT>(screen_.cy), max_pixels);
  }
  const Frame& frame = frames_[next_];
  BitmapSource before;
  if (frame.disposal == Disposal::kRestores) before = canvas_;
  decoder.BlendFrame(static_cast<UINT>(next_), {frame.area.left, frame.area.top}, canvas_);
  ++next_;
  BitmapSource shown = canvas_;
  if (frame.disposal == Disposal::kClears) FillWhite(canvas_, frame.area);
  if (frame.disposal == Disposal::kRestores) canvas_ = std::move(before);
  return shown;
}

}  // namespace quillo::host
