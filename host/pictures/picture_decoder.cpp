#include "host/pictures/picture_decoder.h"

#include <algorithm>
#include <cstdio>

#include "base/checked.h"

namespace quillo::host {

namespace {

void Step(HRESULT result, const char* call) {
  if (SUCCEEDED(result)) return;
  char text[100];
  snprintf(text, sizeof(text), "cannot be decoded (%s: 0x%08lX)", call,
           static_cast<unsigned long>(result));
  throw UnreadablePicture(text);
}

/// A row of blue, green, red, alpha (not premultiplied) to one of blue, green, red.
void BlendOnWhite(const BYTE* source, UINT pixels, std::byte* target) {
  for (UINT i = 0; i < pixels; ++i, source += 4, target += 3) {
    const unsigned alpha = source[3];
    for (int channel = 0; channel < 3; ++channel) {
      const unsigned value = source[channel] * alpha + 255 * (255 - alpha);
      target[channel] = static_cast<std::byte>((value + 127) / 255);
    }
  }
}

}  // namespace

Resolution UsableResolution(Resolution dpi) {
  const auto usable = [](double value) { return value >= 10 && value <= 10'000; };
  return usable(dpi.x) && usable(dpi.y) ? dpi : Resolution{96, 96};
}

PictureDecoder::PictureDecoder(Bytes file) {
  Step(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                        IID_IWICImagingFactory, reinterpret_cast<void**>(factory_.Receive())),
       "CoCreateInstance");
  ComPtr<IWICStream> stream;
  Step(factory_->CreateStream(stream.Receive()), "CreateStream");
  if (file.size() > UINT32_MAX) throw UnreadablePicture("is larger than 4 GB");
  // The stream has no const; a decoder only reads it.
  Step(stream->InitializeFromMemory(reinterpret_cast<BYTE*>(const_cast<std::byte*>(file.data())),
                                    static_cast<DWORD>(file.size())),
       "InitializeFromMemory");
  Step(factory_->CreateDecoderFromStream(stream.Get(), nullptr, WICDecodeMetadataCacheOnDemand,
                                         decoder_.Receive()),
       "CreateDecoderFromStream");
  Step(decoder_->GetFrameCount(&frame_count_), "GetFrameCount");
}

ComPtr<IWICBitmapFrameDecode> PictureDecoder::OpenFrame(UINT index) const {
  ComPtr<IWICBitmapFrameDecode> frame;
  Step(decoder_->GetFrame(index, frame.Receive()), "GetFrame");
  return frame;
}

Resolution PictureDecoder::FrameResolution(UINT index) const {
  Resolution dpi{};
  if (FAILED(OpenFrame(index)->GetResolution(&dpi.x, &dpi.y))) dpi = {};
  return UsableResolution(dpi);
}

BitmapSource PictureDecoder::Frame(UINT index, uint64_t most_pixels) const {
  const ComPtr<IWICBitmapFrameDecode> frame = OpenFrame(index);
  UINT width = 0, height = 0;
  Step(frame->GetSize(&width, &height), "GetSize");
  if (width == 0 || height == 0 || uint64_t{width} * height > most_pixels) {
    throw UnreadablePicture("has " + std::to_string(width) + " x " + std::to_string(height) +
                            " pixels");
  }
  ComPtr<IWICBitmapSource> pixels;
  Step(WICConvertBitmapSource(GUID_WICPixelFormat32bppBGRA, frame.Get(), pixels.Receive()),
       "WICConvertBitmapSource");

  BitmapSource bitmap;
  bitmap.width = static_cast<LONG>(width);
  bitmap.height = static_cast<LONG>(height);
  bitmap.bits_per_pixel = 24;
  bitmap.top_down = true;
  const auto size = CheckedMultiply<size_t>(bitmap.Stride(), height);
  if (!size || *size > UINT32_MAX) throw UnreadablePicture("is larger than 4 GB");
  bitmap.bits.resize(*size);
  // A few rows at a time: a large picture need not stand in memory twice.
  constexpr UINT kStripRows = 64;
  const UINT strip_stride = width * 4;
  std::vector<BYTE> strip(size_t{strip_stride} * kStripRows);
  for (UINT top = 0; top < height; top += kStripRows) {
    const UINT rows = std::min(kStripRows, height - top);
    const WICRect rect{0, static_cast<INT>(top), bitmap.width, static_cast<INT>(rows)};
    Step(pixels->CopyPixels(&rect, strip_stride, strip_stride * rows, strip.data()), "CopyPixels");
    for (UINT row = 0; row < rows; ++row) {
      BlendOnWhite(&strip[size_t{strip_stride} * row], width,
                   &bitmap.bits[bitmap.Stride() * (top + row)]);
    }
  }
  return bitmap;
}

}  // namespace quillo::host
