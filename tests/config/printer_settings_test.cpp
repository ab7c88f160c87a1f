#include "config/settings/printer_settings.h"

#include <gtest/gtest.h>

#include "config/papers/custom_papers.h"
#include "config/settings/printer_options.h"
#include "config/settings_test.h"
#include "support/watch.h"

namespace quillo {
namespace {

using namespace test;

using PrinterSettingsTest = SettingsTest;

TEST_F(PrinterSettingsTest, NotOpen_BadArgument_Denied) {
  const PrinterSettings closed(L"no such printer", PRINTER_ALL_ACCESS);
  const PrinterSettings null(static_cast<HANDLE>(nullptr)), open(printer_.Get());
  const std::pair<const PrinterSettings*, SettingsResult> cases[] = {
      {&closed, SETTINGS_NOT_OPEN}, {&null, SETTINGS_NOT_OPEN}, {&open, SETTINGS_BAD_ARGUMENT}};
  for (const auto& [settings, expected] : cases) {
    EXPECT_EQ(settings->Read(L"v", nullptr, SettingsPlace::kRegistry), expected);
    EXPECT_EQ(settings->Write(nullptr, REG_SZ, {}, SettingsPlace::kPrinterData), expected);
    EXPECT_EQ(settings->ReadStore(L"v", nullptr, SettingsStore::kUser), expected);
    EXPECT_EQ(settings->WriteStore(nullptr, REG_SZ, {}, SettingsStore::kUser), expected);
    EXPECT_EQ(settings->ReadLegacy(L"v", nullptr), expected);
    EXPECT_EQ(settings->WriteLegacy(nullptr, REG_SZ, {}), expected);
    EXPECT_EQ(LoadOptions(*settings, nullptr), expected);
  }
  EXPECT_EQ(StoreOptions(closed, PrinterOptions()), SETTINGS_NOT_OPEN);
  EXPECT_EQ(SaveCustomPapers(L"no such printer", nullptr), SETTINGS_NOT_OPEN);

  const auto write = [&] { return open.WriteStore(L"v", REG_SZ, {}, SettingsStore::kUser); };
  const WATCH(RegSetValueExW) set(LSTATUS{ERROR_ACCESS_DENIED});
  EXPECT_EQ(write(), SETTINGS_SET_FAILED);
  const WATCH(RegCreateKeyExW) create(LSTATUS{ERROR_ACCESS_DENIED});
  EXPECT_EQ(write(), SETTINGS_KEY_FAILED);
  const WATCH(SetPrinterDataW) data(DWORD{ERROR_ACCESS_DENIED});
  EXPECT_EQ(open.Write(L"v", REG_SZ, {}, SettingsPlace::kPrinterData), SETTINGS_WRITE_FAILED);
}

TEST_F(PrinterSettingsTest, CustomPapers_UnwritableValue) {
  std::wstring unwritable;
  const WATCH(RegSetValueExW) set([&](HKEY key, const wchar_t* name, auto... value) {
    return name == unwritable ? ERROR_DISK_FULL : set.CallOriginal(key, name, value...);
  });
  const CustomPapers paper(NewCustomPaper());
  for (const wchar_t* name : {L"CustomPaperDim", L"PaperID", L"Custom Papers Count"}) {
    unwritable = name;
    EXPECT_EQ(SaveCustomPapers(kTestPrinter, paper.Get()), SETTINGS_SET_FAILED);
  }
  unwritable.clear();
  paper.Get()->number = 300;
  paper.Get()->length = paper.Get()->width = 1000;
  ASSERT_EQ(AddCustomPaper(kTestPrinter, *paper.Get()), SETTINGS_OK);
  const WATCH(RegQueryInfoKeyW) unlisted(LSTATUS{ERROR_ACCESS_DENIED});
  EXPECT_EQ(AddCustomPaper(kTestPrinter, *paper.Get()), SETTINGS_READ_FAILED);
}

TEST_F(PrinterSettingsTest, ValueChangedBetweenQueryAndRead) {
  PutData(L"DriverFlags", Number(1));
  // Between asking for the size and reading, the value becomes this long; -1 =
  // gone.
  int size_by_then = 0;
  const WATCH(GetPrinterDataW)
      get([&](HANDLE printer, wchar_t* name, DWORD* type, BYTE* data, auto... sizes) -> DWORD {
        BYTE bytes[16] = {};
        if (data != nullptr && std::wstring(name) == L"InfoKey") {
          if (size_by_then < 0) return ERROR_FILE_NOT_FOUND;
          SetPrinterDataW(printer, name, REG_BINARY, bytes, static_cast<DWORD>(size_by_then));
        }
        return get.CallOriginal(printer, name, type, data, sizes...);
      });
  for (const auto& [by_then, expected] : {std::pair{8, 8u}, {-1, 0u}, {9, 0u}, {3, 3u}}) {
    PutData(L"InfoKey", Zeros(8));
    size_by_then = by_then;
    const PrinterSettings settings(printer_.Get());
    EXPECT_EQ(settings.InfoKey() != nullptr, expected != 0) << by_then;
    EXPECT_EQ(settings.InfoKeySize(), expected) << by_then;
  }
}

void OpenWithTwoMasks() {
  const WATCH(OpenPrinterW) open([](auto, auto, PRINTER_DEFAULTSW* defaults) {
    if (defaults->DesiredAccess != 8) std::exit(1);
    return FALSE;
  });
  const PrinterSettings first(kTestPrinter, 8);
  const PrinterSettings second(kTestPrinter, PRINTER_ALL_ACCESS);
  std::exit(0);
}

TEST_F(PrinterSettingsTest, AccessMask_OfTheFirstConstructionWins) {
  // In a process of its own, where no other printer was opened before.
  EXPECT_EXIT(OpenWithTwoMasks(), testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace quillo
