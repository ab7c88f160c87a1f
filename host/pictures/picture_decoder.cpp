#include "host/pictures/picture_decoder.h"

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

}  // namespace

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

BitmapSource PictureDecoder::Frame(UINT index, uint64_t most_pixels) const {
  ComPtr<IWICBitmapFrameDecode> frame;
  Step(decoder_->GetFrame(index, frame.Receive()), "GetFrame");
  UINT width = 0, height = 0;
  Step(frame->GetSize(&width, &height), "GetSize");
  if (width == 0 || height == 0 || uint64_t{width} * height > most_pixels) {
    throw UnreadablePicture("has " + std::to_string(width) + " x " + std::to_string(height) +
                            " pixels");
  }
  ComPtr<IWICBitmapSource> pixels;
  Step(WICConvertBitmapSource(GUID_WICPixelFormat24bppBGR, frame.Get(), pixels.Receive()),
       "WICConvertBitmapSource");

  BitmapSource bitmap;
  bitmap.width = static_cast<LONG>(width);
  bitmap.height = static_cast<LONG>(height);
  bitmap.bits_per_pixel = 24;
  bitmap.top_down = true;
  const auto size = CheckedMultiply<size_t>(bitmap.Stride(), height);
  if (!size || *size > UINT32_MAX) throw UnreadablePicture("is larger than 4 GB");
  bitmap.bits.resize(*size);
  Step(pixels->CopyPixels(nullptr, static_cast<UINT>(bitmap.Stride()), static_cast<UINT>(*size),
                          reinterpret_cast<BYTE*>(bitmap.bits.data())),
       "CopyPixels");
  return bitmap;
}

}  // namespace quillo::host
