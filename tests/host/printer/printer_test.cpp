#include "base/windows.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <thread>

#include "base/gdi_owners.h"
#include "base/system_owners.h"
#include "config/papers/paper_geometry.h"
#include "config/papers/paper_table.h"
#include "host/base/text.h"
#include "host/printer/paper_names.h"
#include "host/printer/printer_setup.h"
#include "host/printer/printer_values.h"
#include "host/printer/sheet.h"
#include "host/printer/spool_job.h"
#include "support/case_table.h"

namespace quillo::host {
namespace {

TEST(PaperNames, StandardForms_HaveOneNameEach) {
  for (const PaperForm& form : StandardForms()) {
    int names = 0;
    for (const PaperName& name : PaperNames()) names += name.paper == form.paper ? 1 : 0;
    EXPECT_EQ(names, 1) << form.paper;
  }
  EXPECT_EQ(PaperNames().size(), StandardForms().size());
}

/// Reads the header of a metafile that is made for `dc` as pages are.
ENHMETAHEADER HeaderFor(HDC dc, const RECT& frame) {
  MetafileDc metafile_dc(CreateEnhMetaFileW(dc, nullptr, &frame, L"test\0test\0"));
  const EnhMetafile metafile = metafile_dc.Close();
  ENHMETAHEADER header{};
  GetEnhMetaFileHeader(metafile.Get(), sizeof header, &header);
  return header;
}

class PrinterAtResolution : public testing::TestWithParam<int> {};

// What a page metafile takes from its reference DC must be to scale, whatever the sheet.
TEST_P(PrinterAtResolution, ReferenceDc_MatchesSheetAndScale) {
  const int dpi = GetParam();
  const std::wstring printer = L"Quillo test " + std::to_wstring(dpi);
  EnsurePrinter(printer, dpi, {{DMPAPER_USER, {1234, 987}}, {300, {600, 1100}}});

  std::vector<SheetChoice> sheets;
  for (const PaperForm& form : StandardForms()) sheets.push_back({.paper = form.paper});
  sheets.push_back({.paper = DMPAPER_USER, .width = 1234, .height = 987});
  StoreCustomPaper(printer, {"Test", {.paper = 300, .width = 600, .height = 1100}});
  sheets.push_back({.paper = 300, .width = 600, .height = 1100});
  for (size_t i = 0, upright = sheets.size(); i < upright; ++i) {
    sheets.push_back(sheets[i]);
    sheets.back().landscape = true;
  }

  for (const SheetChoice& sheet : sheets) {
    SCOPED_TRACE(DescribeSheet(sheet));
    const DeviceMode mode = MakeDeviceMode(printer, sheet, dpi);
    const CreatedDc dc(CreateDCW(nullptr, printer.c_str(), nullptr, &mode.pub));
    ASSERT_TRUE(dc);
    EXPECT_EQ(GetDeviceCaps(dc.Get(), LOGPIXELSX), dpi);
    EXPECT_EQ(GetDeviceCaps(dc.Get(), LOGPIXELSY), dpi);

    // At most the next whole millimetre, and the next whole pixel.
    const Extent pixels = ResolveSheet(mode).pixels.size;
    const int most = dpi / 25 + 2;
    const int width = GetDeviceCaps(dc.Get(), HORZRES);
    const int height = GetDeviceCaps(dc.Get(), VERTRES);
    EXPECT_TRUE(width >= pixels.width && width <= pixels.width + most) << width;
    EXPECT_TRUE(height >= pixels.height && height <= pixels.height + most) << height;

    const Extent tenths = ResolveSheet(mode).tenths.size;
    const RECT frame{0, 0, tenths.width * 10, tenths.height * 10};
    const ENHMETAHEADER header = HeaderFor(dc.Get(), frame);
    EXPECT_EQ(header.rclFrame.right, frame.right);
    EXPECT_EQ(header.rclFrame.bottom, frame.bottom);
    const double true_width = header.szlMillimeters.cx * dpi / 25.4;
    const double true_height = header.szlMillimeters.cy * dpi / 25.4;
    EXPECT_LE(std::abs(header.szlDevice.cx - true_width), 1) << header.szlMillimeters.cx;
    EXPECT_LE(std::abs(header.szlDevice.cy - true_height), 1) << header.szlMillimeters.cy;
  }
}

INSTANTIATE_TEST_SUITE_P(Resolutions, PrinterAtResolution,
                         testing::Values(kMinDpi, 96, 127, 150, 300, 600, 1201, kMaxDpi));

TEST(SpoolJob, IdTakenElsewhere_TakesTheNext) {
  EnsurePrinter(kPrinterName, 600, {});
  DWORD first = 0;
  {
    const SpoolJob job(kPrinterName, L"first");
    first = job.Id();
  }
  wchar_t spool_file[MAX_PATH];
  GetSystemDirectoryW(spool_file, MAX_PATH);
  swprintf(spool_file + wcslen(spool_file), 64, L"\\spool\\printers\\%05lu.SPL", first + 1);
  const KernelHandle elsewhere(CreateFileW(spool_file, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                           FILE_FLAG_DELETE_ON_CLOSE, nullptr));
  ASSERT_TRUE(elsewhere);
  const SpoolJob job(kPrinterName, L"second");
  EXPECT_EQ(job.Id(), first + 2);
}

std::string Describe(const SheetChoice& sheet) {
  return std::to_string(sheet.paper) + " " + std::to_string(sheet.width) + "x" +
         std::to_string(sheet.height);
}

std::string Describe(const PrinterValue& value) {
  std::string text = ToUtf8(value.name) + " " + std::to_string(value.type);
  for (const std::byte byte : value.bytes) {
    char hex[4];
    std::snprintf(hex, sizeof hex, " %02x", std::to_integer<unsigned>(byte));
    text += hex;
  }
  return text;
}

TEST(CommandLineValues, Texts_GiveValueOrReason) {
  test::CheckCases("host/printer.txt", [](const std::vector<std::string>& fields) -> std::string {
    const std::string& text = fields[1];
    if (fields[0] == "paper") {
      const auto sheet = ParsePaper(text);
      return sheet ? Describe(*sheet) : "-";
    }
    if (fields[0] == "value") {
      const auto value = ParsePrinterValue(text);
      return value ? Describe(*value) : "-";
    }
    std::string why;
    const auto paper = ParseCustomPaper(text, why);
    return paper ? paper->name + " " + Describe(paper->sheet) : why.empty() ? "-" : "- " + why;
  });
}

TEST(StoreCustomPaper, SeveralAtOnce_AreAllKept) {
  const std::wstring printer = L"Quillo test papers";
  EnsurePrinter(printer, 600, {});
  constexpr int16_t kThreads = 4, kEach = 20;
  const auto paper = [](int number, int width) {
    return NamedSheet{"Später",
                      {.paper = static_cast<int16_t>(number), .width = width, .height = 9}};
  };
  std::vector<std::thread> threads;
  for (int first = 300; first < 300 + kThreads * kEach; first += kEach) {
    threads.emplace_back([=] {
      for (int i = 0; i < kEach; ++i) StoreCustomPaper(printer, paper(first + i, first));
    });
  }
  for (std::thread& thread : threads) thread.join();
  StoreCustomPaper(printer, paper(310, 7));  // in the place of another
  const auto stored = StoredCustomPapers(printer);
  EXPECT_EQ(stored.size(), static_cast<size_t>(kThreads * kEach));
  EXPECT_EQ(std::ranges::count(stored, paper(310, 7)), 1);
}

TEST(StorePrinterValue, Value_IsInThePrintersData) {
  EnsurePrinter(kPrinterName, 600, {});
  StorePrinterValue(kPrinterName, *ParsePrinterValue("Quillo test=dword:7"));
  std::wstring name = kPrinterName;
  PrinterHandle printer;
  ASSERT_TRUE(OpenPrinterW(name.data(), printer.Receive(), nullptr));
  std::wstring value = L"Quillo test";
  DWORD type = 0, number = 0, size = 0;
  EXPECT_EQ(GetPrinterDataW(printer.Get(), value.data(), &type, reinterpret_cast<BYTE*>(&number),
                            sizeof number, &size),
            static_cast<DWORD>(ERROR_SUCCESS));
  EXPECT_EQ(type, static_cast<DWORD>(REG_DWORD));
  EXPECT_EQ(number, 7u);
}

}  // namespace
}  // namespace quillo::host
