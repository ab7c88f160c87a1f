#include <gtest/gtest.h>

#include "config/papers/custom_papers.h"
#include "config/settings/printer_options.h"
#include "config/settings/stored_device_mode.h"
#include "config/settings_test.h"
#include "config/user/user_paths.h"
#include "support/holdings.h"

namespace quillo {
namespace {

using namespace test;

class SettingsLeakTest : public SettingsTest {};

void OneRound(HANDLE printer, const CustomPaper* papers) {
  DeviceMode mode;
  BuildDefaultDeviceMode(mode, kTestPrinter);
  mode.pub.dmPaperSize = 300;
  const PrinterSettings settings(printer);
  ASSERT_EQ(WriteDeviceData(settings, mode), SETTINGS_OK);
  ASSERT_TRUE(LoadStoredDeviceMode(printer, mode));
  PrinterOptions options;
  ASSERT_EQ(LoadOptions(settings, &options), SETTINGS_OK);
  ASSERT_EQ(StoreOptions(settings, options), SETTINGS_OK);
  ASSERT_EQ(SaveCustomPapers(kTestPrinter, papers), SETTINGS_OK);
  CustomPaper paper;
  ASSERT_TRUE(FindCustomPaper(mode.pub, paper));
  ValueBuffer value;
  settings.ReadLegacy(L"Options", &value);
  settings.Read(L"absent", &value, SettingsPlace::kRegistry);
  wchar_t folder[MAX_PATH];
  UserTempFolder(folder, MAX_PATH);
  DWORD session = 0;
  ASSERT_TRUE(PrintingUserSession(session));
}

TEST_F(SettingsLeakTest, ThousandRounds_LeaveNothing) {
  for (const wchar_t* name : {L"DriverFlags", L"InfoKey", L"SaveFormatsCount"}) {
    PutData(name, Number(1));
  }
  PutData(L"RegistryKey", Terminated(L"Software\\Product"));
  PutData(L"AboutString", Text(std::string("text")));
  PutData(L"SaveFormats", Zeros(12));
  const CustomPapers papers(NewCustomPaper());
  papers.Get()->number = 300;

  OneRound(printer_.Get(), papers.Get());
  const auto after_one = Holdings::Now();
  for (int i = 0; i < 1000; ++i) OneRound(printer_.Get(), papers.Get());
  const auto after_all = Holdings::Now();
  EXPECT_LT(after_all.heap_bytes, after_one.heap_bytes + 4096);
  EXPECT_EQ(after_all.kernel_handles, after_one.kernel_handles);
}

}  // namespace
}  // namespace quillo
