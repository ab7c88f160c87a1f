#include "host/preview/preview.h"

#include "base/windows.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <wincodec.h>

#include "base/com_owners.h"
#include "base/gdi_owners.h"
#include "host/base/com_apartment.h"
#include "host/base/failure.h"

namespace quillo::host {
namespace {

namespace fs = std::filesystem;

class Preview : public testing::Test {
 protected:
  Preview() {
    // A sheet of one inch by two, its lower half red.
    const RECT frame{0, 0, 2540, 5080};
    MetafileDc dc(CreateEnhMetaFileW(nullptr, page_.c_str(), &frame, nullptr));
    const int dots_per_metre =
        GetDeviceCaps(dc.Get(), HORZRES) * 1000 / GetDeviceCaps(dc.Get(), HORZSIZE);
    const int inch = MulDiv(dots_per_metre, 254, 10000);
    const RECT half{0, inch, inch, 2 * inch};
    const Brush red(CreateSolidBrush(RGB(255, 0, 0)));
    FillRect(dc.Get(), &half, red.Get());
    const EnhMetafile closed = dc.Close();
  }
  ~Preview() override {
    fs::remove(page_);
    fs::remove(png_);
  }

  const ComApartment apartment_;
  const fs::path page_ = fs::temp_directory_path() / L"quillo preview.emf";
  const fs::path png_ = fs::temp_directory_path() / L"quillo preview.png";
};

TEST_F(Preview, Page_BecomesPngOfItsSheet) {
  WritePreview(page_, png_, 50);

  ComPtr<IWICImagingFactory> factory;
  ASSERT_EQ(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                             IID_IWICImagingFactory, reinterpret_cast<void**>(factory.Receive())),
            S_OK);
  ComPtr<IWICBitmapDecoder> decoder;
  ASSERT_EQ(factory->CreateDecoderFromFilename(png_.c_str(), nullptr, GENERIC_READ,
                                               WICDecodeMetadataCacheOnDemand, decoder.Receive()),
            S_OK);
  ComPtr<IWICBitmapFrameDecode> frame;
  ASSERT_EQ(decoder->GetFrame(0, frame.Receive()), S_OK);
  UINT width = 0, height = 0;
  frame->GetSize(&width, &height);
  EXPECT_EQ(width, 50u);
  EXPECT_EQ(height, 100u);
  double x_dpi = 0, y_dpi = 0;
  frame->GetResolution(&x_dpi, &y_dpi);
  EXPECT_NEAR(x_dpi, 50, 0.1);

  std::vector<BYTE> pixels(152 * 100);
  ASSERT_EQ(frame->CopyPixels(nullptr, 152, static_cast<UINT>(pixels.size()), pixels.data()), S_OK);
  const auto pixel = [&pixels](int x, int y) {
    const BYTE* at = &pixels[static_cast<size_t>(y * 152 + x * 3)];
    return RGB(at[2], at[1], at[0]);
  };
  EXPECT_EQ(pixel(25, 25), RGB(255, 255, 255));
  EXPECT_EQ(pixel(25, 75), RGB(255, 0, 0));
}

TEST_F(Preview, Failures_NameTheFileAndLeaveNone) {
  EXPECT_THROW(WritePreview(fs::path(L"no such page.emf"), png_, 50), ResultFailure);
  EXPECT_FALSE(fs::exists(png_));
  EXPECT_THROW(WritePreview(page_, fs::path(L"no such folder") / L"a.png", 50), ResultFailure);
  // 100,000 by 200,000 pixels: more memory than there is.
  EXPECT_THROW(WritePreview(page_, png_, 100'000), ResultFailure);
  EXPECT_FALSE(fs::exists(png_));
}

}  // namespace
}  // namespace quillo::host
