#pragma once

#include "base/windows.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "base/kernel_owners.h"
#include "base/spooler_owners.h"
#include "host/printer/printer_setup.h"
#include "support/registry_sandbox.h"

namespace quillo {

inline constexpr wchar_t kTestPrinter[] = L"Quillo settings test";
inline const std::wstring kProductKey =
    L"Software\\Wow6432Node\\Halvard Technologies, Inc.\\Quillo 6.0";
inline const std::wstring kOwnKey = kProductKey + L"\\" + kTestPrinter;

/// A value as it lies in the registry or in printer data.
struct StoredValue {
  DWORD type;
  std::vector<std::byte> bytes;
  friend bool operator==(const StoredValue&, const StoredValue&) = default;
};

template <typename T>
StoredValue Binary(const T& object, DWORD type = REG_BINARY) {
  const auto bytes = std::as_bytes(std::span(&object, 1));
  return {type, {bytes.begin(), bytes.end()}};
}
inline StoredValue Number(DWORD number) { return Binary(number, REG_DWORD); }
/// Without a terminator unless `text` brings its own.
template <typename Char>
StoredValue Text(const std::basic_string<Char>& text) {
  const auto bytes = std::as_bytes(std::span(text));
  return {REG_SZ, {bytes.begin(), bytes.end()}};
}
inline StoredValue Terminated(const std::wstring& text) { return Text(text + L'\0'); }

inline void PutValue(HKEY root, const std::wstring& path, const wchar_t* name, StoredValue value) {
  RegistryKey key;
  ASSERT_EQ(RegCreateKeyW(root, path.c_str(), key.Receive()), ERROR_SUCCESS);
  const auto size = static_cast<DWORD>(value.bytes.size());
  // A terminator right behind a string would be stored with it.
  value.bytes.resize(value.bytes.size() + sizeof(wchar_t), std::byte{'#'});
  ASSERT_EQ(RegSetValueExW(key.Get(), name, 0, value.type,
                           reinterpret_cast<const BYTE*>(value.bytes.data()), size),
            ERROR_SUCCESS);
}

inline std::optional<StoredValue> GetValue(HKEY root, const std::wstring& path,
                                           const wchar_t* name) {
  RegistryKey key;
  StoredValue value = {REG_NONE, std::vector<std::byte>(4096)};
  auto size = static_cast<DWORD>(value.bytes.size());
  if (RegOpenKeyW(root, path.c_str(), key.Receive()) != ERROR_SUCCESS ||
      RegQueryValueExW(key.Get(), name, nullptr, &value.type,
                       reinterpret_cast<BYTE*>(value.bytes.data()), &size) != ERROR_SUCCESS) {
    return std::nullopt;
  }
  value.bytes.resize(size);
  return value;
}

/// A printer of Wine's spooler whose printer data, and both hives, belong to one test.
class SettingsTest : public testing::Test {
 protected:
  static void SetUpTestSuite() { host::EnsurePrinter(kTestPrinter, 300, {}); }

  void SetUp() override { StartAfresh(); }

  /// Forgets all settings and printer data.
  void StartAfresh() {
    printer_.Reset();
    sandbox_.reset();
    sandbox_.emplace();
    ASSERT_TRUE(sandbox_->Active());
    std::wstring name = kTestPrinter;
    ASSERT_TRUE(OpenPrinterW(name.data(), printer_.Receive(), nullptr));
  }

  void PutData(const wchar_t* name, StoredValue value) {
    const auto size = static_cast<DWORD>(value.bytes.size());
    value.bytes.resize(value.bytes.size() + sizeof(wchar_t), std::byte{'#'});
    ASSERT_EQ(SetPrinterDataW(printer_.Get(), const_cast<wchar_t*>(name), value.type,
                              reinterpret_cast<BYTE*>(value.bytes.data()), size),
              DWORD{ERROR_SUCCESS});
  }

  std::optional<test::RegistrySandbox> sandbox_;
  PrinterHandle printer_;
};

}  // namespace quillo
