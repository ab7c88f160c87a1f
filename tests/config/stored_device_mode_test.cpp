#include "config/settings/stored_device_mode.h"

#include <gtest/gtest.h>

#include "config/settings_test.h"
#include "support/import_patch.h"
#include "support/late_functions.h"

namespace quillo {
namespace {

using namespace test;

constexpr wchar_t kDeviceData[] = L"DEVICE DATA";

/// A mode whose copies tell it from others.
DeviceMode Mode(short copies, uint16_t driver_version = kDriverVersion) {
  DeviceMode mode;
  BuildDefaultDeviceMode(mode, L"stored");
  mode.pub.dmCopies = copies;
  mode.pub.dmDriverVersion = driver_version;
  return mode;
}

std::optional<DeviceMode> spooler_default;  // what the spooler holds as the printer's default
decltype(GetPrinterW)* get_printer;

BOOL WINAPI GiveDefault(HANDLE printer, DWORD level, BYTE* info, DWORD size, DWORD* needed) {
  const BOOL result = get_printer(printer, level, info, size, needed);
  if (result && level == 2) {
    reinterpret_cast<PRINTER_INFO_2W*>(info)->pDevMode =
        spooler_default ? &spooler_default->pub : nullptr;
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
  ImportPatch patch_{"GetPrinterW", GiveDefault};
};

TEST_F(StoredDeviceModeTest, UserThenMachineThenSpooler) {
  using Value = std::optional<StoredValue>;
  const StoredValue user = Binary(Mode(1)), machine = Binary(Mode(2)), huge = Zeros(1 << 20);
  StoredValue too_short = user, too_long = user;
  too_short.bytes.pop_back();
  too_long.bytes.push_back({});
  const struct {
    const char* what;
    Value user, machine;
    std::optional<DeviceMode> spooler;
    int expected;
  } cases[] = {
      {"all", user, machine, Mode(3), 1},
      {"machine", {}, machine, Mode(3), 2},
      {"spooler", {}, {}, Mode(3), 3},
      {"none", {}, {}, {}, 0},
      {"foreign spooler mode", {}, {}, Mode(9, 0x401), 0},
      {"foreign user mode", Binary(Mode(9, 0x401)), machine, Mode(3), 0},
      {"wrong type is final", Binary(Mode(1), REG_SZ), machine, Mode(3), 3},
      {"short is final", too_short, machine, Mode(3), 3},
      {"0 bytes is final", Zeros(0), machine, {}, 0},
      {"too long is unreadable", too_long, machine, Mode(3), 2},
      {"1 MiB is unreadable", huge, huge, {}, 0},
  };
  for (const auto& c : cases) {
    StartAfresh();
    if (c.user) PutValue(HKEY_CURRENT_USER, kOwnKey, kDeviceData, *c.user);
    if (c.machine) PutValue(HKEY_LOCAL_MACHINE, kOwnKey, kDeviceData, *c.machine);
    spooler_default = c.spooler;
    EXPECT_EQ(Load(), c.expected) << c.what;
  }
}

TEST_F(StoredDeviceModeTest, MachinesValue_BecomesTheUsers) {
  PutValue(HKEY_LOCAL_MACHINE, kOwnKey, kDeviceData, Binary(Mode(2)));
  EXPECT_EQ(Load(), 2);
  PutValue(HKEY_LOCAL_MACHINE, kOwnKey, kDeviceData, Binary(Mode(5)));
  EXPECT_EQ(Load(), 2);
  sandbox_->SwitchUser(L"another user");
  EXPECT_EQ(Load(), 5);
  sandbox_->SwitchUser(L"user");
  EXPECT_EQ(GetValue(HKEY_CURRENT_USER, kOwnKey, kDeviceData), Binary(Mode(2)));
}

TEST_F(StoredDeviceModeTest, Write_AdministratorsForTheMachineToo) {
  for (const bool administrator : {false, true}) {
    LateFunctions functions;
    if (!administrator) functions.Miss("EqualSid");
    EXPECT_EQ(WriteDeviceData(PrinterSettings(printer_.Get()), Mode(4)), SETTINGS_OK);
    EXPECT_EQ(GetValue(HKEY_CURRENT_USER, kOwnKey, kDeviceData), Binary(Mode(4)));
    EXPECT_EQ(GetValue(HKEY_LOCAL_MACHINE, kOwnKey, kDeviceData).has_value(), administrator);
  }
}

}  // namespace
}  // namespace quillo
