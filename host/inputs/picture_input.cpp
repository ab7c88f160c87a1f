#include "host/inputs/picture_input.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string_view>

#include "host/pictures/bmp_file.h"
#include "host/pictures/fewest_bits.h"
#include "host/pictures/gif_animation.h"
#include "host/pictures/orientation.h"
#include "host/pictures/picture_decoder.h"

namespace quillo::host {

namespace {

// An A0 sheet at 400 dpi has 248 million. A frame of this size takes 750 MB, and what the system's
// decoder needs.
constexpr uint64_t kMaxPixels = 250'000'000;

/// Where a picture of this size in inches goes on the page.
RECTL Place(double width, double height, SIZEL page, const PageSetup& setup) {
  double scale = setup.dpi;  // device pixels an inch
  double left = 0, top = 0;
  if (setup.fit) {
    scale = std::min(page.cx / width, page.cy / height);
    left = (page.cx - width * scale) / 2;
    top = (page.cy - height * scale) / 2;
  }
  const auto pixel = [](double value) {
    return static_cast<LONG>(std::lround(std::clamp(value, -1e8, 1e8)));
  };
  return {pixel(left), pixel(top), pixel(left + width * scale), pixel(top + height * scale)};
}

class PictureInput : public PrintInput {
 public:
  explicit PictureInput(std::vector<std::byte> content) : content_(std::move(content)) {
    // The first frame is decoded only to see that it can be: many pictures may wait to be printed.
    if (IsRunLengthBmp(content_)) {
      OpenAsDib();
      return;
    }
    try {
      const PictureDecoder decoder(content_);
      decoder.Frame(0, kMaxPixels);
      frame_count_ = decoder.FrameCount();
      animation_ = GifAnimation::Open(content_);
    } catch (const UnreadablePicture&) {
      if (!IsBmp(content_)) throw;
      OpenAsDib();
    }
  }

  bool PreparePage() override {
    if (next_ == frame_count_) return false;
    DecodeFrame();
    // Drawing a large picture takes memory enough without its file, unless that is the picture.
    if (++next_ == frame_count_ && !read_as_dib_) content_ = std::vector<std::byte>();
    return true;
  }

  DrawResult DrawPage(Graphics& canvas, const PageSetup& setup) override {
    const RECTL target =
        Place(picture_.width / dpi_.x, picture_.height / dpi_.y, canvas.Size(), setup);
    canvas.DrawPicture(target, picture_);
    picture_ = {};
    DrawResult result;
    if (!damage_.empty()) result.faults.push_back(damage_);
    return result;
  }

 private:
  void OpenAsDib() {
    ReadBmp(content_);
    frame_count_ = 1;
    read_as_dib_ = true;
  }

  void DecodeFrame() {
    if (read_as_dib_) {
      BmpPicture read = ReadBmp(content_);
      picture_ = std::move(read.pixels);
      dpi_ = read.dpi;
      damage_ = std::move(read.damage);
      return;
    }
    const PictureDecoder decoder(content_);
    const Orientation orientation = OrientationOf(content_, next_);
    try {
      picture_ =
          WithFewestBits(animation_ ? animation_->Next(decoder, kMaxPixels)
                                    : TurnUpright(decoder.Frame(next_, kMaxPixels), orientation));
    } catch (const UnreadablePicture& refused) {
      throw UnreadableInput("has a frame " + std::to_string(next_ + 1) + " that " + refused.what());
    }
    dpi_ = decoder.FrameResolution(next_);
    if (SwapsSides(orientation)) std::swap(dpi_.x, dpi_.y);
  }

  std::vector<std::byte> content_;  // of the file; empty after the last decoded frame
  UINT frame_count_ = 0;
  std::optional<GifAnimation> animation_;
  bool read_as_dib_ = false;  // a BMP file that the platform cannot decode, or not well
  UINT next_ = 0;             // frame that PreparePage decodes
  BitmapSource picture_;      // what DrawPage draws
  Resolution dpi_{};          // of picture_
  std::string damage_;        // of the file's pixels, a phrase
};

}  // namespace

bool LooksLikePicture(Bytes head) {
  using namespace std::string_view_literals;
  const auto begins = [head](std::string_view beginning) {
    return head.size() >= beginning.size() &&
           std::memcmp(head.data(), beginning.data(), beginning.size()) == 0;
  };
  constexpr std::string_view kSignatures[] = {"\x89PNG"sv, "\xFF\xD8\xFF"sv, "II*\0"sv, "MM\0*"sv};
  constexpr std::string_view kLetters[] = {"BM"sv, "GIF8"sv};  // text may begin with them as well
  const auto holds_zero = [head] { return std::ranges::find(head, std::byte{0}) != head.end(); };
  return std::ranges::any_of(kSignatures, begins) ||
         (std::ranges::any_of(kLetters, begins) && holds_zero());
}

std::unique_ptr<PrintInput> OpenPicture(std::vector<std::byte> content) {
  try {
    return std::make_unique<PictureInput>(std::move(content));
  } catch (const UnreadablePicture& refused) {
    throw UnreadableInput(refused.what());
  }
}

}  // namespace quillo::host
