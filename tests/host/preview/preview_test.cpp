#include "host/preview/preview.h"

#include "base/windows.h"

#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>

#include "base/gdi_owners.h"
#include "host/base/com_apartment.h"
#include "host/base/failure.h"
#include "host/emf/metafile_builder.h"
#include "host/pictures/picture_decoder.h"
#include "host/preview/canvas.h"
#include "support/corpus.h"

namespace quillo::host {
namespace {

namespace fs = std::filesystem;

class Preview : public testing::Test {
 protected:
  Preview() {
    // The lower half of the sheet is red.
    Draw(300, [](HDC dc) {
      const RECT half{0, 300, 300, 600};
      const Brush red(CreateSolidBrush(kRed));
      FillRect(dc, &half, red.Get());
    });
  }
  ~Preview() override {
    fs::remove(page_);
    fs::remove(png_);
  }

  static constexpr COLORREF kRed = RGB(255, 0, 0);

  /// Draws a page of one inch by two, `dpi` units an inch.
  void Draw(int dpi, const std::function<void(HDC)>& draw) const {
    const RECT frame{0, 0, 2540, 5080};
    MetafileDc dc(CreateEnhMetaFileW(nullptr, page_.c_str(), &frame, nullptr));
    const float dots_per_inch = 25.4f * static_cast<float>(GetDeviceCaps(dc.Get(), HORZRES)) /
                                static_cast<float>(GetDeviceCaps(dc.Get(), HORZSIZE));
    const float scale = dots_per_inch / static_cast<float>(dpi);
    SetGraphicsMode(dc.Get(), GM_ADVANCED);
    const XFORM units = {scale, 0, 0, scale, 0, 0};
    SetWorldTransform(dc.Get(), &units);
    draw(dc.Get());
    const EnhMetafile closed = dc.Close();
  }

  /// The colours of the preview at 50 dpi.
  std::function<COLORREF(size_t x, size_t y)> Rendered(int width, int height) const {
    WritePreview(page_, png_, 50);
    const std::vector<std::byte> bytes = test::ReadFile(png_);
    const PictureDecoder decoder(bytes);
    EXPECT_NEAR(decoder.FrameResolution(0).x, 50, 0.1);
    const BitmapSource picture = decoder.Frame(0, 5000);
    EXPECT_EQ(picture.width, width);
    EXPECT_EQ(picture.height, height);
    return [picture](size_t x, size_t y) {
      const std::byte* at = &picture.bits[y * picture.Stride() + x * 3];
      return RGB(std::to_integer<int>(at[2]), std::to_integer<int>(at[1]),
                 std::to_integer<int>(at[0]));
    };
  }

  const ComApartment apartment_;
  const fs::path page_ = fs::temp_directory_path() / L"quillo preview.emf";
  const fs::path png_ = fs::temp_directory_path() / L"quillo preview.png";
};

TEST_F(Preview, Page_BecomesPngOfItsSheet) {
  const auto pixel = Rendered(50, 100);
  EXPECT_EQ(pixel(25, 25), RGB(255, 255, 255));
  EXPECT_EQ(pixel(25, 75), kRed);
}

TEST_F(Preview, ReducedPictures_AreAveragedWhateverTheStretchMode) {
  for (const int mode : {BLACKONWHITE, WHITEONBLACK, COLORONCOLOR, HALFTONE}) {
    Draw(600, [mode](HDC dc) {
      // Columns of 3 dots, black and white in turn.
      const Canvas picture({600, 600});
      const CreatedDc source(CreateCompatibleDC(nullptr));
      const SelectScope drawn(source.Get(), picture.Handle());
      for (int x = 3; x < 600; x += 6) PatBlt(source.Get(), x, 0, 3, 600, WHITENESS);
      SetStretchBltMode(dc, mode);
      BitBlt(dc, 0, 0, 600, 600, source.Get(), 0, 0, SRCCOPY);
      IntersectClipRect(dc, 0, 600, 300, 1200);
      StretchBlt(dc, 0, 600, 600, 600, source.Get(), 0, 0, 600, 600, SRCCOPY);
    });
    const auto pixel = Rendered(50, 100);
    for (const size_t x : {5u, 24u, 26u, 45u}) {
      EXPECT_NEAR(GetRValue(pixel(x, 20)), 128, 4) << mode << " " << x;
      EXPECT_NEAR(GetRValue(pixel(x, 75)), x < 25 ? 128 : 255, 4) << mode << " " << x;
    }
  }
}

TEST_F(Preview, WidePens_HaveDashesPatternsAndMiters) {
  constexpr uint32_t kBlue = 0x0000FF;  // of a colour table
  emf::MetafileBuilder file;            // 5 units a millimetre; here 0.39 pixels each
  file.Add(emf::kEmrEXTCREATEPEN, {1, 0, 0, 0, 0, PS_GEOMETRIC | PS_USERSTYLE | PS_ENDCAP_FLAT, 12,
                                   BS_SOLID, kRed, 0, 2, 20, 10});
  file.Add(emf::kEmrSELECTOBJECT, {1});
  file.Add(emf::kEmrMOVETOEX, {0, 10});
  file.Add(emf::kEmrLINETO, {80, 10});
  // clang-format off
  file.Add(emf::kEmrEXTCREATEPEN, {
      2, 56, 48, 104, 32,  // header and bits of the pattern: places and sizes
      PS_GEOMETRIC | PS_JOIN_MITER, 20, BS_DIBPATTERNPT, 0, 0, 0, 0,
      40, 8, 8, 0x10001, 0, 0, 0, 0, 0, 0, kBlue, kBlue,  // one bit a pixel, both of a colour
      0, 0, 0, 0, 0, 0, 0, 0});
  // clang-format on
  file.Add(emf::kEmrSELECTOBJECT, {2});
  file.Add(emf::kEmrSETMITERLIMIT, {10});
  file.Add(emf::kEmrPOLYLINE, {0, 0, 0, 0, 3, 20, 40, 80, 40, 80, 20});
  const auto bytes = file.Finish();
  std::ofstream(page_, std::ios::binary)
      .write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
  const auto pixel = Rendered(39, 20);
  EXPECT_EQ(pixel(4, 4), kRed);
  EXPECT_EQ(pixel(10, 4), RGB(255, 255, 255));
  EXPECT_EQ(pixel(15, 4), kRed);
  EXPECT_EQ(pixel(20, 16), RGB(0, 0, 255));
  EXPECT_EQ(pixel(34, 18), RGB(0, 0, 255));
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
