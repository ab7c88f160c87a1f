#include "config/printer_options.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>

#include "config/settings_test.h"

namespace quillo {
namespace {

class PrinterOptionsTest : public SettingsTest {};

std::optional<std::string> TextOf(const GlobalBlock& block) {
  if (!block) return std::nullopt;
  return std::string(static_cast<const char*>(block.Get()));
}

/// A text in a block. Zeros right behind it would be stored with it, so there are none.
GlobalBlock Copy(const std::string& text) {
  GlobalBlock block = GlobalBlock::Allocate(text.size() + 5);
  auto* bytes = static_cast<char*>(block.Get());
  std::fill_n(std::copy_n(text.c_str(), text.size() + 1, bytes), 4, '#');
  return block;
}

TEST_F(PrinterOptionsTest, Load_ComesFromPrinterData) {
  PutData(L"Options", Number(0x80000001));
  PutData(L"AboutString", Text(std::string("8-bit text")));
  PutData(L"AboutIcon", Text(std::string("icon\0rest", 9)));
  PutData(L"SaveFormatsCount", Number(2));
  PutData(L"SaveFormats", Text(std::string(24, 'f')));
  PutValue(HKEY_CURRENT_USER, kOwnKey, L"Options", Number(7));
  PrinterOptions options;
  ASSERT_EQ(LoadOptions(PrinterSettings(printer_.Get()), &options), SETTINGS_OK);
  EXPECT_EQ(options.options, 0x80000001u);
  EXPECT_EQ(TextOf(options.about_string), "8-bit text");
  EXPECT_EQ(TextOf(options.about_icon), "icon");
  EXPECT_EQ(options.save_formats_count, 2u);
  EXPECT_EQ(std::string(static_cast<const char*>(options.save_formats.Get()), 24),
            std::string(24, 'f'));
}

TEST_F(PrinterOptionsTest, SaveFormats_HoldAsManyEntriesAsTheyCount) {
  const struct {
    const char* what;
    std::optional<DWORD> count;
    size_t bytes;
    DWORD expected;
  } cases[] = {
      {"no count", {}, 24, 0},
      {"count 0", 0, 24, 0},
      {"fewer counted", 1, 24, 1},
      {"more counted", 3, 24, 2},
      {"half an entry", 1, 11, 0},
      {"none stored", 5, 0, 0},
      {"absurd", 0xFFFFFFFF, 1 << 20, (1 << 20) / 12},
  };
  for (const auto& c : cases) {
    StartAfresh();
    if (c.count) PutData(L"SaveFormatsCount", Number(*c.count));
    PutData(L"SaveFormats", {REG_BINARY, std::vector<std::byte>(c.bytes)});
    PrinterOptions options;
    EXPECT_EQ(LoadOptions(PrinterSettings(printer_.Get()), &options), SETTINGS_OK) << c.what;
    EXPECT_EQ(options.save_formats_count, c.expected) << c.what;
    EXPECT_EQ(static_cast<bool>(options.save_formats), c.expected != 0) << c.what;
  }
}

TEST_F(PrinterOptionsTest, Store_GoesToTheUsersRegistry) {
  const PrinterSettings settings(printer_.Get());
  PrinterOptions options;
  options.options = 9;
  ASSERT_EQ(StoreOptions(settings, options), SETTINGS_OK);
  for (const wchar_t* name : {L"AboutString", L"AboutIcon", L"SaveFormatsCount", L"SaveFormats"}) {
    EXPECT_FALSE(GetValue(HKEY_CURRENT_USER, kOwnKey, name)) << name;
  }
  options.about_string = Copy("abc");
  options.about_icon = Copy("");
  options.save_formats = Copy(std::string(24, 'f'));
  options.save_formats_count = 2;
  ASSERT_EQ(StoreOptions(settings, options), SETTINGS_OK);
  EXPECT_EQ(GetValue(HKEY_CURRENT_USER, kOwnKey, L"Options"), Number(9));
  EXPECT_EQ(GetValue(HKEY_CURRENT_USER, kOwnKey, L"AboutString"), Text(std::string("abc\0", 4)));
  EXPECT_EQ(GetValue(HKEY_CURRENT_USER, kOwnKey, L"AboutIcon"), Text(std::string("\0", 1)));
  EXPECT_EQ(GetValue(HKEY_CURRENT_USER, kOwnKey, L"SaveFormatsCount"), Number(2));
  EXPECT_EQ(GetValue(HKEY_CURRENT_USER, kOwnKey, L"SaveFormats"),
            (StoredValue{REG_BINARY, Text(std::string(24, 'f')).bytes}));
}

TEST_F(PrinterOptionsTest, Unusable_Refused) {
  const PrinterSettings closed(static_cast<HANDLE>(nullptr));
  PrinterOptions options;
  EXPECT_EQ(LoadOptions(closed, &options), SETTINGS_NOT_OPEN);
  EXPECT_EQ(StoreOptions(closed, options), SETTINGS_NOT_OPEN);
  EXPECT_EQ(LoadOptions(PrinterSettings(printer_.Get()), nullptr), SETTINGS_BAD_ARGUMENT);
}

}  // namespace
}  // namespace quillo
