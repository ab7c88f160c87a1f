#include "host/preview/png_file.h"

#include "base/windows.h"

#include <vector>
#include <wincodec.h>

#include "base/com_owners.h"
#include "host/base/failure.h"
#include "host/base/text.h"

namespace quillo::host {

namespace {

/// Throws ResultFailure when a step of the encoder fails.
class Step {
 public:
  explicit Step(const std::filesystem::path& path)
      : what_("cannot write " + ToUtf8(path.wstring())) {}
  void operator()(HRESULT result, const char* call) const {
    if (FAILED(result)) throw ResultFailure(what_, call, static_cast<DWORD>(result));
  }

 private:
  std::string what_;
};

WICPixelFormatGUID FormatOf(const BitmapSource& picture) {
  switch (picture.bits_per_pixel) {
    case 1:
      return GUID_WICPixelFormat1bppIndexed;
    case 4:
      return GUID_WICPixelFormat4bppIndexed;
    case 8:
      return GUID_WICPixelFormat8bppIndexed;
    default:
      return GUID_WICPixelFormat24bppBGR;
  }
}

/// Most of a page is blank paper, which packs as well unfiltered, in a third of the time.
HRESULT ChooseFilter(IPropertyBag2& options) {
  wchar_t name[] = L"FilterOption";
  PROPBAG2 option{};
  option.pstrName = name;
  VARIANT filter{};
  filter.vt = VT_UI1;
  filter.bVal = WICPngFilterNone;
  return options.Write(1, &option, &filter);
}

void Encode(const std::filesystem::path& path, const BitmapSource& picture, int dpi) {
  const Step step(path);
  ComPtr<IWICImagingFactory> factory;
  step(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                        IID_IWICImagingFactory, reinterpret_cast<void**>(factory.Receive())),
       "CoCreateInstance");
  ComPtr<IWICStream> stream;
  step(factory->CreateStream(stream.Receive()), "CreateStream");
  step(stream->InitializeFromFilename(path.c_str(), GENERIC_WRITE), "InitializeFromFilename");
  ComPtr<IWICBitmapEncoder> encoder;
  step(factory->CreateEncoder(GUID_ContainerFormatPng, nullptr, encoder.Receive()),
       "CreateEncoder");
  step(encoder->Initialize(stream.Get(), WICBitmapEncoderNoCache), "Initialize");
  ComPtr<IWICBitmapFrameEncode> frame;
  ComPtr<IPropertyBag2> options;
  step(encoder->CreateNewFrame(frame.Receive(), options.Receive()), "CreateNewFrame");
  step(ChooseFilter(*options.Get()), "Write");
  step(frame->Initialize(options.Get()), "Initialize");
  step(frame->SetSize(static_cast<UINT>(picture.width), static_cast<UINT>(picture.height)),
       "SetSize");
  step(frame->SetResolution(dpi, dpi), "SetResolution");
  const WICPixelFormatGUID wanted = FormatOf(picture);
  WICPixelFormatGUID format = wanted;
  step(frame->SetPixelFormat(&format), "SetPixelFormat");
  step(IsEqualGUID(format, wanted) ? S_OK : E_NOTIMPL, "SetPixelFormat");
  if (!picture.palette.empty()) {
    std::vector<WICColor> colours = picture.palette;
    for (WICColor& colour : colours) colour |= 0xFF000000;  // opaque
    ComPtr<IWICPalette> palette;
    step(factory->CreatePalette(palette.Receive()), "CreatePalette");
    step(palette->InitializeCustom(colours.data(), static_cast<UINT>(colours.size())),
         "InitializeCustom");
    step(frame->SetPalette(palette.Get()), "SetPalette");
  }
  // The encoder only reads the pixels.
  auto* const rows = reinterpret_cast<BYTE*>(const_cast<std::byte*>(picture.bits.data()));
  step(frame->WritePixels(static_cast<UINT>(picture.height), static_cast<UINT>(picture.Stride()),
                          static_cast<UINT>(picture.bits.size()), rows),
       "WritePixels");
  step(frame->Commit(), "Commit");
  step(encoder->Commit(), "Commit");
}

}  // namespace

void WritePng(const std::filesystem::path& path, const BitmapSource& picture, int dpi) {
  try {
    Encode(path, picture, dpi);
  } catch (const ResultFailure&) {
    DeleteFileW(path.c_str());
    throw;
  }
}

}  // namespace quillo::host
