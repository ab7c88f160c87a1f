
#include "config/papers/paper_table.h"
#include "host/printer/printer_values.h"
#include "support/case_table.h"
#include "ui/printer_interface_test.h"

namespace quillo::test {
namespace {

class Capabilities : public PrinterInterface {
 protected:
  static void SetUpTestSuite() {
    PrinterInterface::SetUpTestSuite();
    host::StoreCustomPaper(kUiPrinter, {"Ticket", {.paper = 300, .width = 600, .height = 1100}});
  }

  /// As an application asks: through the spooler.
  static DWORD Ask(WORD capability, void* output = nullptr, const DEVMODEW* mode = nullptr) {
    return DeviceCapabilitiesW(kUiPrinter, L"NUL:", capability, static_cast<wchar_t*>(output),
                               mode);
  }
  template <typename Entry>
  static std::vector<Entry> List(WORD capability) {
    std::vector<Entry> entries(Ask(capability));
    EXPECT_EQ(Ask(capability, entries.data()), entries.size());
    return entries;
  }
};

TEST_F(Capabilities, EveryNumber_WithAndWithoutBufferAndMode) {
  DeviceMode mode;
  BuildDefaultDeviceMode(mode, kUiPrinter);
  auto* spoolers = Export<decltype(DrvSplDeviceCaps)>("DrvSplDeviceCaps");
  EXPECT_EQ(GetProcAddress(dll_.Get(), MAKEINTRESOURCEA(254)),
            GetProcAddress(dll_.Get(), "DrvSplDeviceCaps"));
  for (const CaseRow& row : ReadCases("ui/capabilities.txt")) {
    SCOPED_TRACE(row.place + row.fields[1]);
    const auto number = static_cast<WORD>(std::stoul(row.fields[0]));
    const auto answer = static_cast<DWORD>(std::stol(row.fields[2]));
    const size_t bytes = std::stoul(row.fields[3]) * answer;
    wchar_t name[] = L"Quillo test settings";
    EXPECT_EQ(Ask(number), answer);
    EXPECT_EQ(Ask(number, nullptr, &mode.pub), answer);
    const GuardedBytes output(bytes);
    EXPECT_EQ(Ask(number, output.Get()), answer);
    // The spooler says how much room there is.
    const auto characters = static_cast<DWORD>(bytes / sizeof(wchar_t));
    EXPECT_EQ(spoolers(nullptr, name, number, output.Get(), characters, nullptr), answer);
    if (bytes == 0) continue;
    EXPECT_EQ(spoolers(nullptr, name, number, output.Get(), characters - 1, nullptr), GDI_ERROR);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
  }
}

TEST_F(Capabilities, Papers_AreTheDriversFormsAndTheCustomOnes) {
  struct Name {
    wchar_t text[64];
  };
  const auto numbers = List<WORD>(DC_PAPERS);
  const auto sizes = List<POINT>(DC_PAPERSIZE);
  const auto names = List<Name>(DC_PAPERNAMES);
  ASSERT_EQ(numbers.size(), StandardForms().size() + 1);
  for (size_t i = 0; i < StandardForms().size(); ++i) {
    const PaperForm& form = StandardForms()[i];
    const int tenths = form.unit_class == kSizeInches ? 254 : 10;
    EXPECT_EQ(numbers[i], form.paper);
    EXPECT_EQ(sizes[i].x, form.width.numerator * tenths / form.width.denominator);
    EXPECT_EQ(sizes[i].y, form.height.numerator * tenths / form.height.denominator);
    EXPECT_NE(names[i].text[0], L'\0') << form.paper;
    for (size_t j = 0; j < i; ++j) EXPECT_STRNE(names[i].text, names[j].text);
  }
  EXPECT_STREQ(names[2].text, L"A4");
  EXPECT_EQ(numbers.back(), 300);
  EXPECT_EQ(sizes.back().x, 600);
  EXPECT_EQ(sizes.back().y, 1100);
  EXPECT_STREQ(names.back().text, L"Ticket");
}

TEST_F(Capabilities, ResolutionsAndBin) {
  std::vector<LONG> dpi;
  for (const SIZE resolution : List<SIZE>(DC_ENUMRESOLUTIONS)) {
    EXPECT_EQ(resolution.cx, resolution.cy);
    dpi.push_back(resolution.cx);
  }
  EXPECT_EQ(dpi, (std::vector<LONG>{96, 150, 300, 600, 1200}));
  EXPECT_EQ(List<WORD>(DC_BINS), std::vector<WORD>{DMBIN_AUTO});
}

TEST_F(Capabilities, JobOnUnknownPaper_IsHeldWithAReason) {
  auto* query = Export<decltype(DevQueryPrintEx)>("DevQueryPrintEx");
  DeviceMode mode;
  BuildDefaultDeviceMode(mode, kUiPrinter);
  for (const CaseRow& row : ReadCases("ui/held_jobs.txt")) {
    SCOPED_TRACE(row.place);
    const bool prints = row.fields[1] == "prints";
    SetMembers(mode, row.fields[0]);
    wchar_t reason[8] = L"#######";
    DEVQUERYPRINT_INFO info{sizeof info, 1, printer_.Get(), &mode.pub, reason, 7, 0};
    EXPECT_EQ(query(&info), prints);
    EXPECT_STREQ(reason, prints ? L"#######" : L"The pr");
    EXPECT_EQ(info.cchNeeded, prints ? 0u : 65u);
    EXPECT_EQ(reason[7], L'\0');
  }
  EXPECT_FALSE(query(nullptr));
}

}  // namespace
}  // namespace quillo::test
