#include "config/printer_settings.h"

#include <gtest/gtest.h>
#include <string>

#include "config/settings_test.h"
#include "support/import_patch.h"

namespace quillo {
namespace {

using test::ImportPatch;

class PrinterSettingsTest : public SettingsTest {};

constexpr DWORD kAccess = PRINTER_ALL_ACCESS;

std::optional<std::wstring> TextOf(const GlobalBlock& block) {
  if (!block) return std::nullopt;
  return std::wstring(static_cast<const wchar_t*>(block.Get()));
}

/// Runs one read of a four-byte value, with and without a buffer.
template <typename Read>
void ExpectReads(const Read& read, SettingsResult expected, DWORD number = 0) {
  DWORD got = 0;
  ValueBuffer value = BufferFor(got);
  EXPECT_EQ(read(&value), expected);
  if (expected == SETTINGS_OK) {
    EXPECT_EQ(got, number);
    EXPECT_EQ(value.type, DWORD{REG_DWORD});
    EXPECT_EQ(value.size, 4u);
  }
  ValueBuffer query;
  EXPECT_EQ(read(&query), expected == SETTINGS_OK ? SETTINGS_SIZE_ONLY : expected);
  EXPECT_EQ(query.size, expected == SETTINGS_OK ? 4u : 0u);
}

TEST_F(PrinterSettingsTest, Values_AnySizeAndType_AsStored) {
  const struct {
    const char* what;
    StoredValue stored;
    DWORD capacity;
    SettingsResult expected;
  } cases[] = {
      {"exact", Number(7), 4, SETTINGS_OK},
      {"room to spare", Number(7), 99, SETTINGS_OK},
      {"too small", Number(7), 3, SETTINGS_READ_FAILED},
      {"0 bytes", {REG_BINARY, {}}, 4, SETTINGS_OK},
      {"odd text", Text(std::string("abc")), 4, SETTINGS_OK},
      {"1 MiB into 4", {REG_BINARY, std::vector<std::byte>(1 << 20)}, 4, SETTINGS_READ_FAILED},
      {"1 MiB", {REG_BINARY, std::vector<std::byte>(1 << 20)}, 1 << 20, SETTINGS_OK},
  };
  const PrinterSettings settings(printer_.Get());
  std::vector<std::byte> buffer(1 << 20);
  for (const auto& c : cases) {
    PutData(L"v", c.stored);
    PutValue(HKEY_CURRENT_USER, kOwnKey, L"v", c.stored);
    const auto expect = [&](const auto& read) {
      ValueBuffer query;
      EXPECT_EQ(read(&query), SETTINGS_SIZE_ONLY) << c.what;
      EXPECT_EQ(query.size, c.stored.bytes.size()) << c.what;
      ValueBuffer value = {buffer.data(), c.capacity};
      ASSERT_EQ(read(&value), c.expected) << c.what;
      if (c.expected != SETTINGS_OK) return;
      EXPECT_EQ((StoredValue{value.type, {buffer.begin(), buffer.begin() + value.size}}), c.stored)
          << c.what;
    };
    expect([&](ValueBuffer* v) { return settings.Read(L"v", v, SettingsPlace::kPrinterData); });
    expect([&](ValueBuffer* v) { return settings.Read(L"v", v, SettingsPlace::kRegistry); });
    expect([&](ValueBuffer* v) { return settings.ReadStore(L"v", v, SettingsStore::kUser); });
  }
}

TEST_F(PrinterSettingsTest, BothStores_AreKeysOfTheirOwn) {
  const PrinterSettings settings(kTestPrinter, kAccess);
  const auto read = [&](SettingsStore store) {
    return [&settings, store](ValueBuffer* v) { return settings.ReadStore(L"v", v, store); };
  };
  ExpectReads(read(SettingsStore::kUser), SETTINGS_READ_FAILED);
  ExpectReads(read(SettingsStore::kMachine), SETTINGS_READ_FAILED);
  EXPECT_EQ(settings.WriteStore(L"v", REG_DWORD, Number(1).bytes, SettingsStore::kMachine),
            SETTINGS_OK);
  ExpectReads(read(SettingsStore::kUser), SETTINGS_READ_FAILED);
  EXPECT_EQ(settings.WriteStore(L"v", REG_DWORD, Number(2).bytes, SettingsStore::kUser),
            SETTINGS_OK);
  ExpectReads(read(SettingsStore::kUser), SETTINGS_OK, 2);
  ExpectReads(read(SettingsStore::kMachine), SETTINGS_OK, 1);
  EXPECT_EQ(GetValue(HKEY_LOCAL_MACHINE, kOwnKey, L"v"), Number(1));
  EXPECT_EQ(GetValue(HKEY_CURRENT_USER, kOwnKey, L"v"), Number(2));

  // Another user of the machine sees the machine's value only.
  ASSERT_TRUE(sandbox_->SwitchUser(L"another user"));
  ExpectReads(read(SettingsStore::kUser), SETTINGS_READ_FAILED);
  ExpectReads(read(SettingsStore::kMachine), SETTINGS_OK, 1);
  EXPECT_EQ(settings.WriteStore(L"v", REG_DWORD, Number(3).bytes, SettingsStore::kUser),
            SETTINGS_OK);
  ASSERT_TRUE(sandbox_->SwitchUser(L"user"));
  ExpectReads(read(SettingsStore::kUser), SETTINGS_OK, 2);
}

TEST_F(PrinterSettingsTest, KeysOfAProduct_ReadAndWriteDiffer) {
  const std::wstring product = L"Software\\Product";
  const std::wstring products_own = product + L"\\" + kTestPrinter;
  const struct {
    const char* what;
    std::optional<StoredValue> flags, registry_key;
    std::wstring store_key, write_key, read_key;
  } cases[] = {
      {"plain", {}, {}, kOwnKey, kOwnKey, kOwnKey},
      {"flags 0", Number(0), {}, kOwnKey, kOwnKey, kOwnKey},
      {"flags without a key", Number(1), {}, kOwnKey, kOwnKey, kOwnKey},
      {"empty key", Number(1), Terminated(L""), kOwnKey, kOwnKey, kOwnKey},
      {"key without flags", {}, Terminated(product), kOwnKey, products_own, product},
      {"both", Number(1), Terminated(product), products_own, products_own, product},
      {"no terminator", Number(1), Text(product), products_own, products_own, product},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    StartAfresh();
    if (c.flags) PutData(L"DriverFlags", *c.flags);
    if (c.registry_key) PutData(L"RegistryKey", *c.registry_key);
    for (const bool by_name : {true, false}) {
      const PrinterSettings named(kTestPrinter, kAccess);
      const PrinterSettings handled(printer_.Get());
      const PrinterSettings& settings = by_name ? named : handled;
      EXPECT_EQ(settings.WriteStore(L"s", REG_DWORD, Number(1).bytes, SettingsStore::kMachine),
                SETTINGS_OK);
      EXPECT_EQ(GetValue(HKEY_LOCAL_MACHINE, c.store_key, L"s"), Number(1));
      EXPECT_EQ(settings.Write(L"w", REG_DWORD, Number(2).bytes, SettingsPlace::kRegistry),
                SETTINGS_OK);
      EXPECT_EQ(GetValue(HKEY_CURRENT_USER, c.write_key, L"w"), Number(2));
      PutValue(HKEY_CURRENT_USER, c.read_key, L"r", Number(3));
      ExpectReads([&](ValueBuffer* v) { return settings.Read(L"r", v, SettingsPlace::kRegistry); },
                  SETTINGS_OK, 3);
    }
  }
  // The key that "RegistryKey" names is missing: the built-in one is read.
  StartAfresh();
  PutData(L"RegistryKey", Terminated(product));
  PutValue(HKEY_CURRENT_USER, kOwnKey, L"r", Number(4));
  const PrinterSettings settings(printer_.Get());
  ExpectReads([&](ValueBuffer* v) { return settings.Read(L"r", v, SettingsPlace::kRegistry); },
              SETTINGS_OK, 4);
}

TEST_F(PrinterSettingsTest, LegacyPlace_IsFilledFromPrinterDataOnce) {
  const PrinterSettings settings(kTestPrinter, kAccess);
  const auto read = [&](ValueBuffer* v) { return settings.ReadLegacy(L"v", v); };
  ExpectReads(read, SETTINGS_READ_FAILED);
  EXPECT_FALSE(GetValue(HKEY_CURRENT_USER, L"Printers\\VORNIX", L"v"));
  PutData(L"v", Number(5));
  ExpectReads(read, SETTINGS_OK, 5);
  EXPECT_EQ(GetValue(HKEY_CURRENT_USER, L"Printers\\VORNIX", L"v"), Number(5));
  PutData(L"v", Number(6));
  ExpectReads(read, SETTINGS_OK, 5);
  EXPECT_EQ(settings.WriteLegacy(L"v", REG_DWORD, Number(7).bytes), SETTINGS_OK);
  ExpectReads(read, SETTINGS_OK, 7);
  // The key is there now: other values are not looked for in printer data any more.
  PutData(L"other", Number(8));
  ValueBuffer query;
  EXPECT_EQ(settings.ReadLegacy(L"other", &query), SETTINGS_READ_FAILED);
}

TEST_F(PrinterSettingsTest, NotOpenOrBadArguments) {
  const PrinterSettings closed(L"no such printer", kAccess);
  const PrinterSettings null(static_cast<HANDLE>(nullptr));
  const PrinterSettings open(printer_.Get());
  EXPECT_TRUE(open.IsOpen());
  for (const PrinterSettings* settings : {&closed, &null}) {
    ValueBuffer value;
    EXPECT_FALSE(settings->IsOpen());
    EXPECT_EQ(settings->Read(L"v", &value, SettingsPlace::kRegistry), SETTINGS_NOT_OPEN);
    EXPECT_EQ(settings->Write(L"v", REG_SZ, {}, SettingsPlace::kPrinterData), SETTINGS_NOT_OPEN);
    EXPECT_EQ(settings->ReadStore(L"v", &value, SettingsStore::kUser), SETTINGS_NOT_OPEN);
    EXPECT_EQ(settings->WriteStore(L"v", REG_SZ, {}, SettingsStore::kUser), SETTINGS_NOT_OPEN);
    EXPECT_EQ(settings->ReadLegacy(L"v", nullptr), SETTINGS_NOT_OPEN);
    EXPECT_EQ(settings->WriteLegacy(nullptr, REG_SZ, {}), SETTINGS_NOT_OPEN);
  }
  ValueBuffer value;
  EXPECT_EQ(open.Read(nullptr, &value, SettingsPlace::kRegistry), SETTINGS_BAD_ARGUMENT);
  EXPECT_EQ(open.Read(L"v", nullptr, SettingsPlace::kPrinterData), SETTINGS_BAD_ARGUMENT);
  EXPECT_EQ(open.ReadStore(L"v", nullptr, SettingsStore::kUser), SETTINGS_BAD_ARGUMENT);
  EXPECT_EQ(open.ReadLegacy(L"v", nullptr), SETTINGS_BAD_ARGUMENT);
  EXPECT_EQ(open.WriteLegacy(nullptr, REG_SZ, {}), SETTINGS_BAD_ARGUMENT);
  ProductStrings strings;
  EXPECT_EQ(ReadProductStrings(nullptr, &strings), SETTINGS_BAD_ARGUMENT);
  EXPECT_EQ(ReadProductStrings(printer_.Get(), nullptr), SETTINGS_BAD_ARGUMENT);
}

TEST_F(PrinterSettingsTest, AccessDenied_TellsWhichStepFailed) {
  const PrinterSettings settings(printer_.Get());
  const auto write = [&] {
    return settings.WriteStore(L"v", REG_DWORD, Number(1).bytes, SettingsStore::kUser);
  };
  {
    const ImportPatch patch(
        "RegCreateKeyExW",
        +[](HKEY, const wchar_t*, DWORD, wchar_t*, DWORD, REGSAM, SECURITY_ATTRIBUTES*, HKEY*,
            DWORD*) WINAPI -> LSTATUS { return ERROR_ACCESS_DENIED; });
    EXPECT_EQ(write(), SETTINGS_KEY_FAILED);
  }
  {
    const ImportPatch patch(
        "RegSetValueExW",
        +[](HKEY, const wchar_t*, DWORD, DWORD, const BYTE*, DWORD)
             WINAPI -> LSTATUS { return ERROR_ACCESS_DENIED; });
    EXPECT_EQ(write(), SETTINGS_SET_FAILED);
  }
  EXPECT_EQ(write(), SETTINGS_OK);
  {
    const ImportPatch patch(
        "RegOpenKeyExW", +[](HKEY, const wchar_t*, DWORD, REGSAM, HKEY*) WINAPI -> LSTATUS {
          return ERROR_ACCESS_DENIED;
        });
    ValueBuffer value;
    EXPECT_EQ(settings.ReadStore(L"v", &value, SettingsStore::kUser), SETTINGS_READ_FAILED);
  }
  const ImportPatch patch(
      "SetPrinterDataW",
      +[](HANDLE, wchar_t*, DWORD, BYTE*, DWORD) WINAPI -> DWORD { return ERROR_ACCESS_DENIED; });
  EXPECT_EQ(settings.Write(L"v", REG_DWORD, Number(1).bytes, SettingsPlace::kPrinterData),
            SETTINGS_WRITE_FAILED);
}

TEST_F(PrinterSettingsTest, ProductStrings_AnyForm_EndInATerminator) {
  const struct {
    const char* what;
    std::optional<StoredValue> stored;
    std::optional<std::wstring> expected;
  } cases[] = {
      {"terminated", Terminated(L"https://x"), L"https://x"},
      {"no terminator", Text(std::wstring(L"ab")), L"ab"},
      {"odd length", Text(std::string("a\0b\0c", 5)), L"ab"},
      {"1 byte", Text(std::string("a")), L""},
      {"0 bytes", StoredValue{REG_SZ, {}}, L""},
      {"a number", Number(0x00620061), L"ab"},
      {"1 MiB", Text(std::wstring(1 << 19, L'a')), std::wstring(1 << 19, L'a')},
      {"absent", {}, {}},
  };
  for (const auto& c : cases) {
    StartAfresh();
    PutData(L"DriverFlags", Number(1));
    if (c.stored) PutData(L"url", *c.stored);
    const PrinterSettings settings(printer_.Get());
    EXPECT_EQ(settings.DriverFlags(), 1u);
    EXPECT_EQ(TextOf(settings.Strings().slots[ProductStrings::kUrl]), c.expected) << c.what;
    EXPECT_FALSE(settings.Strings().slots[ProductStrings::kProductName]) << c.what;
  }
}

TEST_F(PrinterSettingsTest, WithoutDriverFlags_NothingOfTheProductIsRead) {
  for (const std::optional<DWORD> flags : {std::optional<DWORD>(), std::optional<DWORD>(0)}) {
    if (flags) PutData(L"DriverFlags", Number(*flags));
    for (const wchar_t* name : {L"ProductName", L"RootDir", L"HelpFile", L"url", L"InfoKey"}) {
      PutData(name, Terminated(L"x"));
    }
    const PrinterSettings settings(kTestPrinter, kAccess);
    for (const GlobalBlock& slot : settings.Strings().slots) EXPECT_FALSE(slot);
    EXPECT_EQ(settings.InfoKey(), nullptr);
  }
  PutData(L"DriverFlags", Number(0x80000000));
  const PrinterSettings settings(kTestPrinter, kAccess);
  EXPECT_STREQ(settings.Strings().Text(ProductStrings::kProductName), L"x");
  EXPECT_EQ(settings.Strings().Text(ProductStrings::kRegistryKey), nullptr);
  ASSERT_NE(settings.InfoKey(), nullptr);
  EXPECT_EQ(settings.InfoKeySize(), 4u);
}

// Between asking for the size and reading, the value of printer data becomes this.
std::optional<StoredValue> value_by_then;
decltype(GetPrinterDataW)* get_printer_data;

DWORD WINAPI ChangeAfterQuery(HANDLE printer, wchar_t* name, DWORD* type, BYTE* data, DWORD size,
                              DWORD* needed) {
  if (data != nullptr && std::wstring(name) == L"InfoKey") {
    if (!value_by_then) return ERROR_FILE_NOT_FOUND;
    SetPrinterDataW(printer, name, value_by_then->type,
                    reinterpret_cast<BYTE*>(value_by_then->bytes.data()),
                    static_cast<DWORD>(value_by_then->bytes.size()));
  }
  return get_printer_data(printer, name, type, data, size, needed);
}

TEST_F(PrinterSettingsTest, ValueChangedBetweenQueryAndRead) {
  const struct {
    const char* what;
    std::optional<StoredValue> by_then;
    std::optional<DWORD> expected_size;
  } cases[] = {
      {"gone", {}, {}},
      {"grown", StoredValue{REG_BINARY, std::vector<std::byte>(9)}, {}},
      {"shrunk", StoredValue{REG_BINARY, std::vector<std::byte>(3)}, 3},
  };
  PutData(L"DriverFlags", Number(1));
  const ImportPatch patch("GetPrinterDataW", ChangeAfterQuery);
  get_printer_data = patch.Original<decltype(GetPrinterDataW)>();
  for (const auto& c : cases) {
    PutData(L"InfoKey", {REG_BINARY, std::vector<std::byte>(8)});
    value_by_then = c.by_then;
    const PrinterSettings settings(printer_.Get());
    EXPECT_EQ(settings.InfoKey() != nullptr, c.expected_size.has_value()) << c.what;
    EXPECT_EQ(settings.InfoKeySize(), c.expected_size.value_or(0)) << c.what;
  }
}

std::vector<DWORD> masks;

BOOL WINAPI NoteMask(wchar_t*, HANDLE*, PRINTER_DEFAULTSW* defaults) {
  masks.push_back(defaults->DesiredAccess);
  return FALSE;
}

TEST_F(PrinterSettingsTest, AccessMask_OfTheFirstConstructionWins) {
  // In a process of its own, where no other printer was opened before.
  EXPECT_EXIT(
      {
        const ImportPatch patch("OpenPrinterW", NoteMask);
        const PrinterSettings first(kTestPrinter, 8);
        const PrinterSettings second(kTestPrinter, kAccess);
        std::exit(masks == std::vector<DWORD>{8, 8} ? 0 : 1);
      },
      testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace quillo
