#include "host/preview/preview.h"

#include "base/windows.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

#include "base/gdi_owners.h"
#include "host/base/com_apartment.h"
#include "host/base/failure.h"
#include "host/pictures/picture_decoder.h"

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

  std::ifstream file(png_, std::ios::binary);
  const std::string bytes(std::istreambuf_iterator<char>(file), {});
  const PictureDecoder decoder(std::as_bytes(std::span(bytes)));
  EXPECT_NEAR(decoder.FrameResolution(0).x, 50, 0.1);
  const BitmapSource picture = decoder.Frame(0, 5000);
  EXPECT_EQ(picture.width, 50);
  ASSERT_EQ(picture.height, 100);
  const auto pixel = [&picture](size_t x, size_t y) {
    const std::byte* at = &picture.bits[y * picture.Stride() + x * 3];
    return RGB(std::to_integer<int>(at[2]), std::to_integer<int>(at[1]),
               std::to_integer<int>(at[0]));
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
