#include "config/stored_device_mode.h"

#include <gtest/gtest.h>

#include "config/settings_test.h"
#include "support/import_patch.h"
#include "support/late_functions.h"

namespace quillo {
namespace {

constexpr wchar_t kDeviceData[] = L"DEVICE DATA";

DeviceMode Mode(short copies) {
  DeviceMode mode;
  BuildDefaultDeviceMode(mode, L"stored");
  mode.pub.dmCopies = copies;  // tells one mode from another
  return mode;
}

DeviceMode Foreign() {
  DeviceMode mode = Mode(9);
  mode.pub.dmDriverVersion = 0x0401;
  return mode;
}

// What the spooler holds as the printer's default; null = nothing.
const DEVMODEW* spooler_default = nullptr;
decltype(GetPrinterW)* get_printer = nullptr;

BOOL WINAPI GiveDefault(HANDLE printer, DWORD level, BYTE* info, DWORD size, DWORD* needed) {
  const BOOL result = get_printer(printer, level, info, size, needed);
  if (result && level == 2) {
    reinterpret_cast<PRINTER_INFO_2W*>(info)->pDevMode = const_cast<DEVMODEW*>(spooler_default);
  }
  return result;
}

class StoredDeviceModeTest : public SettingsTest {
 protected:
  StoredDeviceModeTest() { get_printer = patch_.Original<decltype(GetPrinterW)>(); }

  /// The copies of the mode that is found; 0 = none.
  int Load() {
    DeviceMode mode = Mode(0);
    const bool found = LoadStoredDeviceMode(printer_.Get(), mode);
    EXPECT_EQ(found, mode.pub.dmCopies != 0);
    return mode.pub.dmCopies;
  }

 private:
  test::ImportPatch patch_{"GetPrinterW", GiveDefault};
};

TEST_F(StoredDeviceModeTest, UserThenMachineThenSpooler) {
  const DeviceMode spooled = Mode(3);
  const DeviceMode foreign = Foreign();
  StoredValue wrong_type = Binary(Mode(1));
  wrong_type.type = REG_SZ;
  StoredValue too_short = Binary(Mode(1));
  too_short.bytes.pop_back();
  StoredValue too_long = Binary(Mode(1));
  too_long.bytes.push_back({});
  const StoredValue huge = {REG_BINARY, std::vector<std::byte>(1 << 20)};
  const struct {
    const char* what;
    std::optional<StoredValue> user, machine;
    const DeviceMode* spooler;
    int expected;
  } cases[] = {
      {"all", Binary(Mode(1)), Binary(Mode(2)), &spooled, 1},
      {"machine", {}, Binary(Mode(2)), &spooled, 2},
      {"spooler", {}, {}, &spooled, 3},
      {"none", {}, {}, nullptr, 0},
      {"foreign spooler mode", {}, {}, &foreign, 0},
      {"foreign user mode", Binary(foreign), Binary(Mode(2)), &spooled, 0},
      {"wrong type is final", wrong_type, Binary(Mode(2)), &spooled, 3},
      {"short is final", too_short, Binary(Mode(2)), &spooled, 3},
      {"0 bytes is final", StoredValue{REG_BINARY, {}}, Binary(Mode(2)), nullptr, 0},
      {"too long is unreadable", too_long, Binary(Mode(2)), &spooled, 2},
      {"1 MiB is unreadable", huge, Binary(Mode(2)), &spooled, 2},
      {"1 MiB everywhere", huge, huge, nullptr, 0},
  };
  for (const auto& c : cases) {
    StartAfresh();
    if (c.user) PutValue(HKEY_CURRENT_USER, kOwnKey, kDeviceData, *c.user);
    if (c.machine) PutValue(HKEY_LOCAL_MACHINE, kOwnKey, kDeviceData, *c.machine);
    spooler_default = c.spooler != nullptr ? &c.spooler->pub : nullptr;
    EXPECT_EQ(Load(), c.expected) << c.what;
  }
}

TEST_F(StoredDeviceModeTest, MachineValue_BecomesTheUsers) {
  spooler_default = nullptr;
  PutValue(HKEY_LOCAL_MACHINE, kOwnKey, kDeviceData, Binary(Mode(2)));
  EXPECT_EQ(Load(), 2);
  EXPECT_EQ(GetValue(HKEY_CURRENT_USER, kOwnKey, kDeviceData), Binary(Mode(2)));
  PutValue(HKEY_LOCAL_MACHINE, kOwnKey, kDeviceData, Binary(Mode(5)));
  EXPECT_EQ(Load(), 2);
  // Another user gets the machine's as it is by now, and the first one's stays.
  ASSERT_TRUE(sandbox_->SwitchUser(L"another user"));
  EXPECT_EQ(Load(), 5);
  ASSERT_TRUE(sandbox_->SwitchUser(L"user"));
  EXPECT_EQ(Load(), 2);
}

TEST_F(StoredDeviceModeTest, Write_AdministratorsForTheMachineToo) {
  for (const bool administrator : {false, true}) {
    StartAfresh();
    test::LateFunctions functions;
    if (!administrator) functions.Miss("EqualSid");
    EXPECT_EQ(WriteDeviceData(PrinterSettings(printer_.Get()), Mode(4)), SETTINGS_OK);
    EXPECT_EQ(GetValue(HKEY_CURRENT_USER, kOwnKey, kDeviceData), Binary(Mode(4)));
    EXPECT_EQ(GetValue(HKEY_LOCAL_MACHINE, kOwnKey, kDeviceData).has_value(), administrator);
  }
}

}  // namespace
}  // namespace quillo
