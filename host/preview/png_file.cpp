#include "host/preview/png_file.h"

#include "base/windows.h"

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

void Encode(const std::filesystem::path& path, const Picture& picture, int dpi) {
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
  WICPixelFormatGUID format = GUID_WICPixelFormat24bppBGR;
  step(frame->SetPixelFormat(&format), "SetPixelFormat");
  step(IsEqualGUID(format, GUID_WICPixelFormat24bppBGR) ? S_OK : E_NOTIMPL, "SetPixelFormat");
  step(frame->WritePixels(static_cast<UINT>(picture.height), static_cast<UINT>(picture.stride),
                          static_cast<UINT>(picture.rows.size()),
                          reinterpret_cast<BYTE*>(picture.rows.data())),
       "WritePixels");
  step(frame->Commit(), "Commit");
  step(encoder->Commit(), "Commit");
}

}  // namespace

void WritePng(const std::filesystem::path& path, const Picture& picture, int dpi) {
  try {
    Encode(path, picture, dpi);
  } catch (const ResultFailure&) {
    DeleteFileW(path.c_str());
    throw;
  }
}

}  // namespace quillo::host
