#include "host/pictures/picture_decoder.h"

#include <algorithm>

#include "base/arithmetic.h"
#include "host/base/failure.h"

namespace quillo::host {

namespace {

/// Why the platform does not decode a picture. Its decoders do not tell kinds of damage apart.
std::string ReasonOf(HRESULT result) {
  constexpr int kOfCodecs = 0x898;  // the facility of WINCODEC_ERR_*
  switch (result) {
    case WINCODEC_ERR_COMPONENTNOTFOUND:
    case WINCODEC_ERR_UNSUPPORTEDPIXELFORMAT:
    case WINCODEC_ERR_UNSUPPORTEDOPERATION:
      return "no decoder is installed for it";
    default:
      return result == E_FAIL || HRESULT_FACILITY(result) == kOfCodecs
                 ? "it is damaged or cut off"
                 : DescribeError(static_cast<DWORD>(result));
  }
}

void Step(HRESULT result) {
  if (FAILED(result)) throw UnreadablePicture("cannot be decoded: " + ReasonOf(result));
}

/// A row of blue, green, red, alpha (not premultiplied) over one of blue, green, red.
void BlendRow(const BYTE* source, size_t pixels, std::byte* target) {
  for (size_t i = 0; i < pixels; ++i, source += 4, target += 3) {
    const unsigned alpha = source[3];
    for (int channel = 0; channel < 3; ++channel) {
      const unsigned under = std::to_integer<unsigned>(target[channel]);
      const unsigned value = source[channel] * alpha + under * (255 - alpha);
      target[channel] = static_cast<std::byte>((value + 127) / 255);
    }
  }
}

}  // namespace

Resolution UsableResolution(Resolution dpi) {
  const auto usable = [](double value) { return value >= 10 && value <= 10'000; };
  return usable(dpi.x) && usable(dpi.y) ? dpi : Resolution{96, 96};
}

BitmapSource BlankPicture(UINT width, UINT height, uint64_t max_pixels) {
  const std::string sides =
      "has " + std::to_string(width) + " x " + std::to_string(height) + " pixels";
  if (width == 0 || height == 0) throw UnreadablePicture(sides);
  if (uint64_t{width} * height > max_pixels) {
    throw UnreadablePicture(sides + ", more than the " + std::to_string(max_pixels / 1'000'000) +
                            " million that can be printed");
  }
  BitmapSource picture;
  picture.width = static_cast<LONG>(width);
  picture.height = static_cast<LONG>(height);
  picture.bits_per_pixel = 24;
  picture.top_down = true;
  const auto size = CheckedMultiply<size_t>(picture.Stride(), height);
  if (!size || *size > UINT32_MAX) throw UnreadablePicture("is larger than 4 GB");
  picture.bits.assign(*size, std::byte{0xFF});
  return picture;
}

PictureDecoder::PictureDecoder(Bytes file) {
  Step(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                        IID_IWICImagingFactory, reinterpret_cast<void**>(factory_.Receive())));
  ComPtr<IWICStream> stream;
  Step(factory_->CreateStream(stream.Receive()));
  if (file.size() > UINT32_MAX) throw UnreadablePicture("is larger than 4 GB");
  // The stream has no const; a decoder only reads it.
  Step(stream->InitializeFromMemory(reinterpret_cast<BYTE*>(const_cast<std::byte*>(file.data())),
                                    static_cast<DWORD>(file.size())));
  Step(factory_->CreateDecoderFromStream(stream.Get(), nullptr, WICDecodeMetadataCacheOnDemand,
                                         decoder_.Receive()));
  Step(decoder_->GetFrameCount(&frame_count_));
}

ComPtr<IWICBitmapFrameDecode> PictureDecoder::OpenFrame(UINT index) const {
  ComPtr<IWICBitmapFrameDecode> frame;
  Step(decoder_->GetFrame(index, frame.Receive()));
  return frame;
}

Resolution PictureDecoder::FrameResolution(UINT index) const {
  Resolution dpi{};
  if (FAILED(OpenFrame(index)->GetResolution(&dpi.x, &dpi.y))) dpi = {};
  return UsableResolution(dpi);
}

BitmapSource PictureDecoder::Frame(UINT index, uint64_t max_pixels) const {
  UINT width = 0, height = 0;
  Step(OpenFrame(index)->GetSize(&width, &height));
  BitmapSource picture = BlankPicture(width, height, max_pixels);
  BlendFrame(index, {0, 0}, picture);
  return picture;
}

void PictureDecoder::BlendFrame(UINT index, POINT at, BitmapSource& picture) const {
  const ComPtr<IWICBitmapFrameDecode> frame = OpenFrame(index);
  UINT width = 0, height = 0;
  Step(frame->GetSize(&width, &height));
  if (width == 0 || at.x >= picture.width || at.y >= picture.height) return;
  width = std::min(width, static_cast<UINT>(picture.width - at.x));
  height = std::min(height, static_cast<UINT>(picture.height - at.y));
  ComPtr<IWICBitmapSource> pixels;
  Step(WICConvertBitmapSource(GUID_WICPixelFormat32bppBGRA, frame.Get(), pixels.Receive()));

  // A few rows at a time: a large picture is not in memory twice.
  constexpr UINT kStripBytes = 4 << 20;
  const UINT strip_stride = width * 4;
  const UINT strip_rows = std::max(kStripBytes / strip_stride, 1u);
  std::vector<BYTE> strip(size_t{strip_stride} * strip_rows);
  for (UINT top = 0; top < height; top += strip_rows) {
    const UINT rows = std::min(strip_rows, height - top);
    const WICRect rect{0, static_cast<INT>(top), static_cast<INT>(width), static_cast<INT>(rows)};
    Step(pixels->CopyPixels(&rect, strip_stride, strip_stride * rows, strip.data()));
    std::byte* target = &picture.bits[picture.Stride() * (static_cast<size_t>(at.y) + top)];
    for (UINT row = 0; row < rows; ++row, target += picture.Stride()) {
      BlendRow(&strip[size_t{strip_stride} * row], width, target + size_t{3} * at.x);
    }
  }
}

}  // namespace quillo::host
