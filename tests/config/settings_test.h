#pragma once

#include "base/windows.h"

#include <gtest/gtest.h>
#include <optional>
#include <string>

#include "base/system_owners.h"
#include "host/printer/printer_setup.h"
#include "support/registry_sandbox.h"

namespace quillo {

inline constexpr wchar_t kTestPrinter[] = L"Quillo settings test";
inline const std::wstring kOwnKey =
    L"Software\\Wow6432Node\\Halvard Technologies, Inc.\\Quillo 6.0\\Quillo settings test";

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
    std::wstring name = kTestPrinter;
    ASSERT_TRUE(OpenPrinterW(name.data(), printer_.Receive(), nullptr));
  }

  void PutData(const wchar_t* name, const std::optional<test::StoredValue>& value) {
    if (!value) return;
    auto bytes = value->bytes;
    ASSERT_EQ(
        SetPrinterDataW(printer_.Get(), const_cast<wchar_t*>(name), value->type,
                        reinterpret_cast<BYTE*>(bytes.data()), static_cast<DWORD>(bytes.size())),
        DWORD{ERROR_SUCCESS});
  }

  std::optional<test::RegistrySandbox> sandbox_;
  PrinterHandle printer_;
};

}  // namespace quillo
