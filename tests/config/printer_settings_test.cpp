#include "config/settings/printer_settings.h"

#include <gtest/gtest.h>

#include "config/settings/printer_options.h"
#include "config/settings_test.h"
#include "support/import_patch.h"

namespace quillo {
namespace {

using namespace test;

class PrinterSettingsTest : public SettingsTest {
 protected:
  std::vector<std::byte> buffer_ = std::vector<std::byte>(1 << 20);
};

/// Reads into `capacity` bytes of `buffer`, and asks for the size; says what was read.
template <typename Read>
std::optional<StoredValue> ReadBack(const Read& read, std::vector<std::byte>& buffer,
                                    DWORD capacity = 1 << 20) {
  ValueBuffer query, value = {buffer.data(), capacity};
  const SettingsResult asked = read(&query);
  const SettingsResult result = read(&value);
  EXPECT_EQ(asked == SETTINGS_SIZE_ONLY, result == SETTINGS_OK || capacity < query.size);
  if (result != SETTINGS_OK) {
    EXPECT_EQ(result, SETTINGS_READ_FAILED);
    return std::nullopt;
  }
  EXPECT_EQ(query.size, value.size);
  return StoredValue{value.type, {buffer.begin(), buffer.begin() + value.size}};
}

std::optional<std::wstring> WideText(const GlobalBlock& block) {
  if (!block) return std::nullopt;
  return std::wstring(static_cast<const wchar_t*>(block.Get()));
}

TEST_F(PrinterSettingsTest, Values_OfAnySizeAndType) {
  const PrinterSettings settings(printer_.Get());
  const auto data = [&](auto* v) { return settings.Read(L"v", v, SettingsPlace::kPrinterData); };
  const auto registry = [&](auto* v) { return settings.Read(L"v", v, SettingsPlace::kRegistry); };
  EXPECT_FALSE(ReadBack(data, buffer_));
  EXPECT_FALSE(ReadBack(registry, buffer_));
  for (const StoredValue& value : {Number(7), Zeros(0), Text(std::string("odd")), Zeros(1 << 20)}) {
    PutData(L"v", value);
    PutValue(HKEY_CURRENT_USER, kOwnKey, L"v", value);
    EXPECT_EQ(ReadBack(data, buffer_), value) << value.bytes.size();
    EXPECT_EQ(ReadBack(registry, buffer_), value) << value.bytes.size();
    if (value.bytes.empty()) continue;
    const auto short_by_one = static_cast<DWORD>(value.bytes.size() - 1);
    EXPECT_FALSE(ReadBack(data, buffer_, short_by_one)) << value.bytes.size();
    EXPECT_FALSE(ReadBack(registry, buffer_, short_by_one)) << value.bytes.size();
  }
}

TEST_F(PrinterSettingsTest, Stores_OfMachineAndEachUser) {
  const PrinterSettings settings(kTestPrinter, PRINTER_ALL_ACCESS);
  const auto put = [&](SettingsStore store, DWORD number) {
    EXPECT_EQ(settings.WriteStore(L"v", REG_DWORD, Number(number).bytes, store), SETTINGS_OK);
  };
  const auto users = [&](auto* v) { return settings.ReadStore(L"v", v, SettingsStore::kUser); };
  const auto machines = [&](auto* v) {
    return settings.ReadStore(L"v", v, SettingsStore::kMachine);
  };
  EXPECT_FALSE(ReadBack(users, buffer_));
  put(SettingsStore::kMachine, 1);
  EXPECT_FALSE(ReadBack(users, buffer_));
  put(SettingsStore::kUser, 2);
  EXPECT_EQ(GetValue(HKEY_LOCAL_MACHINE, kOwnKey, L"v"), Number(1));
  EXPECT_EQ(GetValue(HKEY_CURRENT_USER, kOwnKey, L"v"), Number(2));
  sandbox_->SwitchUser(L"another user");
  EXPECT_FALSE(ReadBack(users, buffer_));
  EXPECT_EQ(ReadBack(machines, buffer_), Number(1));
  put(SettingsStore::kUser, 3);
  sandbox_->SwitchUser(L"user");
  EXPECT_EQ(ReadBack(users, buffer_), Number(2));
}

TEST_F(PrinterSettingsTest, KeysOfAProduct_ReadAndWriteDiffer) {
  const std::wstring product = L"Software\\Product", own = product + L"\\" + kTestPrinter;
  const struct {
    const char* what;
    std::optional<StoredValue> flags, registry_key;
    std::wstring store_key, write_key, read_key;
  } cases[] = {
      {"plain", {}, {}, kOwnKey, kOwnKey, kOwnKey},
      {"flags 0", Number(0), {}, kOwnKey, kOwnKey, kOwnKey},
      {"flags without a key", Number(1), {}, kOwnKey, kOwnKey, kOwnKey},
      {"empty key", Number(1), Terminated(L""), kOwnKey, kOwnKey, kOwnKey},
      {"key without flags", {}, Terminated(product), kOwnKey, own, product},
      {"key not there", {}, Terminated(L"Software\\Gone"), kOwnKey, L"", kOwnKey},
      {"both", Number(1), Terminated(product), own, own, product},
      {"no terminator", Number(1), Text(product), own, own, product},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    StartAfresh();
    PutData(L"DriverFlags", c.flags);
    PutData(L"RegistryKey", c.registry_key);
    PutValue(HKEY_CURRENT_USER, c.read_key, L"r", Number(3));
    const PrinterSettings named(kTestPrinter, PRINTER_ALL_ACCESS), handled(printer_.Get());
    for (const PrinterSettings* settings : {&named, &handled}) {
      const auto read = [&](auto* v) { return settings->Read(L"r", v, SettingsPlace::kRegistry); };
      EXPECT_EQ(ReadBack(read, buffer_), Number(3));
      settings->WriteStore(L"s", REG_DWORD, Number(1).bytes, SettingsStore::kMachine);
      EXPECT_EQ(GetValue(HKEY_LOCAL_MACHINE, c.store_key, L"s"), Number(1));
      if (c.write_key.empty()) continue;
      settings->Write(L"w", REG_DWORD, Number(2).bytes, SettingsPlace::kRegistry);
      EXPECT_EQ(GetValue(HKEY_CURRENT_USER, c.write_key, L"w"), Number(2));
    }
  }
}

TEST_F(PrinterSettingsTest, LegacyPlace_IsFilledFromPrinterDataOnce) {
  const PrinterSettings settings(kTestPrinter, PRINTER_ALL_ACCESS);
  const auto read = [&](auto* v) { return settings.ReadLegacy(L"v", v); };
  EXPECT_FALSE(ReadBack(read, buffer_));
  PutData(L"v", Number(5));
  EXPECT_EQ(ReadBack(read, buffer_), Number(5));
  PutData(L"v", Number(6));
  EXPECT_EQ(ReadBack(read, buffer_), Number(5));
  EXPECT_EQ(GetValue(HKEY_CURRENT_USER, L"Printers\\VORNIX", L"v"), Number(5));
  EXPECT_EQ(settings.WriteLegacy(L"v", REG_DWORD, Number(7).bytes), SETTINGS_OK);
  EXPECT_EQ(ReadBack(read, buffer_), Number(7));
}

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

  const auto write = [&] { return open.WriteStore(L"v", REG_SZ, {}, SettingsStore::kUser); };
  const ImportPatch set(
      "RegSetValueExW", +[](HKEY, const wchar_t*, DWORD, DWORD, const BYTE*, DWORD)
                             WINAPI { return LSTATUS{ERROR_ACCESS_DENIED}; });
  EXPECT_EQ(write(), SETTINGS_SET_FAILED);
  const ImportPatch create(
      "RegCreateKeyExW",
      +[](HKEY, const wchar_t*, DWORD, wchar_t*, DWORD, REGSAM, SECURITY_ATTRIBUTES*, HKEY*, DWORD*)
           WINAPI { return LSTATUS{ERROR_ACCESS_DENIED}; });
  EXPECT_EQ(write(), SETTINGS_KEY_FAILED);
  const ImportPatch data(
      "SetPrinterDataW",
      +[](HANDLE, wchar_t*, DWORD, BYTE*, DWORD) WINAPI { return DWORD{ERROR_ACCESS_DENIED}; });
  EXPECT_EQ(open.Write(L"v", REG_SZ, {}, SettingsPlace::kPrinterData), SETTINGS_WRITE_FAILED);
}

TEST_F(PrinterSettingsTest, ProductStrings_EndInATerminator) {
  const struct {
    const char* what;
    std::optional<StoredValue> flags, stored;
    std::optional<std::wstring> expected;
  } cases[] = {
      {"terminated", Number(1), Terminated(L"https://x"), L"https://x"},
      {"no terminator", Number(0x80000000), Text(std::wstring(L"ab")), L"ab"},
      {"odd length", Number(1), Text(std::string("a\0b\0c", 5)), L"ab"},
      {"1 byte", Number(1), Zeros(1), L""},
      {"0 bytes", Number(1), Zeros(0), L""},
      {"1 MiB", Number(1), Text(std::wstring(1 << 19, L'a')), std::wstring(1 << 19, L'a')},
      {"absent", Number(1), {}, {}},
      {"no flags", {}, Terminated(L"x"), {}},
      {"flags 0", Number(0), Terminated(L"x"), {}},
  };
  for (const auto& c : cases) {
    StartAfresh();
    PutData(L"DriverFlags", c.flags);
    PutData(L"url", c.stored);
    const PrinterSettings settings(printer_.Get());
    EXPECT_EQ(WideText(settings.Strings().slots[ProductStrings::kUrl]), c.expected) << c.what;
    EXPECT_FALSE(settings.Strings().slots[ProductStrings::kProductName]) << c.what;
  }
}

// Between asking for the size and reading, the printer's "InfoKey" becomes this long; -1 = gone.
int size_by_then;
decltype(GetPrinterDataW)* get_printer_data;

DWORD WINAPI ChangeAfterQuery(HANDLE printer, wchar_t* name, DWORD* type, BYTE* data, DWORD size,
                              DWORD* needed) {
  BYTE bytes[16] = {};
  if (data != nullptr && std::wstring(name) == L"InfoKey") {
    if (size_by_then < 0) return ERROR_FILE_NOT_FOUND;
    SetPrinterDataW(printer, name, REG_BINARY, bytes, static_cast<DWORD>(size_by_then));
  }
  return get_printer_data(printer, name, type, data, size, needed);
}

TEST_F(PrinterSettingsTest, ValueChangedBetweenQueryAndRead) {
  PutData(L"DriverFlags", Number(1));
  const ImportPatch patch("GetPrinterDataW", ChangeAfterQuery);
  get_printer_data = patch.Original<decltype(GetPrinterDataW)>();
  for (const auto& [by_then, expected] : {std::pair{8, 8u}, {-1, 0u}, {9, 0u}, {3, 3u}}) {
    PutData(L"InfoKey", Zeros(8));
    size_by_then = by_then;
    const PrinterSettings settings(printer_.Get());
    EXPECT_EQ(settings.InfoKey() != nullptr, expected != 0) << by_then;
    EXPECT_EQ(settings.InfoKeySize(), expected) << by_then;
  }
}

BOOL WINAPI RefuseAllButMask8(wchar_t*, HANDLE*, PRINTER_DEFAULTSW* defaults) {
  if (defaults->DesiredAccess != 8) std::exit(1);
  return FALSE;
}

void OpenWithTwoMasks() {
  const ImportPatch patch("OpenPrinterW", RefuseAllButMask8);
  const PrinterSettings first(kTestPrinter, 8);
  const PrinterSettings second(kTestPrinter, PRINTER_ALL_ACCESS);
  std::exit(0);
}

TEST_F(PrinterSettingsTest, AccessMask_OfTheFirstConstructionWins) {
  // In a process of its own, where no other printer was opened before.
  EXPECT_EXIT(OpenWithTwoMasks(), testing::ExitedWithCode(0), "");
}

TEST_F(PrinterSettingsTest, Options_LoadFromPrinterDataStoreToTheRegistry) {
  PutData(L"Options", Number(0x80000001));
  PutData(L"AboutString", Text(std::string("8-bit text")));
  PutData(L"SaveFormats", Zeros(25));
  const PrinterSettings settings(printer_.Get());
  PrinterOptions options;
  for (const auto& [count, expected] : {std::pair{0u, 0u}, {1u, 1u}, {3u, 2u}, {~0u, 2u}}) {
    PutData(L"SaveFormatsCount", Number(count));
    ASSERT_EQ(LoadOptions(settings, &options), SETTINGS_OK);
    EXPECT_EQ(options.save_formats_count, expected);
    EXPECT_EQ(static_cast<bool>(options.save_formats), expected != 0);
  }
  EXPECT_EQ(options.options, 0x80000001u);
  EXPECT_STREQ(static_cast<const char*>(options.about_string.Get()), "8-bit text");
  EXPECT_FALSE(options.about_icon);

  ASSERT_EQ(StoreOptions(settings, options), SETTINGS_OK);
  EXPECT_EQ(GetValue(HKEY_CURRENT_USER, kOwnKey, L"Options"), Number(0x80000001));
  EXPECT_EQ(GetValue(HKEY_CURRENT_USER, kOwnKey, L"SaveFormatsCount"), Number(2));
  EXPECT_EQ(GetValue(HKEY_CURRENT_USER, kOwnKey, L"SaveFormats"), Zeros(24));
  EXPECT_FALSE(GetValue(HKEY_CURRENT_USER, kOwnKey, L"AboutIcon"));
  // 8-bit, and 11 bytes with the terminator; Windows adds to a text what it takes for half a one.
  const auto text = GetValue(HKEY_CURRENT_USER, kOwnKey, L"AboutString");
  ASSERT_TRUE(text && text->bytes.size() >= 11);
  EXPECT_STREQ(reinterpret_cast<const char*>(text->bytes.data()), "8-bit text");
  EXPECT_EQ(text->type, DWORD{REG_SZ});
}

}  // namespace
}  // namespace quillo
