#pragma once

#include "base/windows.h"

#include <gtest/gtest.h>
#include <string>

#include "base/system_owners.h"
#include "config/device_mode/device_mode.h"
#include "host/printer/printer_setup.h"
#include "support/built_file.h"
#include "support/guarded_bytes.h"
#include "support/mode_members.h"
#include "ui/printer_interface.h"

namespace quillo::test {

inline constexpr wchar_t kUiPrinter[] = L"Quillo test settings";

/// The shipped DLL, and a printer in the spooler that it belongs to.
class PrinterInterface : public testing::Test {
 protected:
  static void SetUpTestSuite() { host::EnsurePrinter(kUiPrinter, 600, {}); }
  PrinterInterface() {
    std::wstring name = kUiPrinter;
    EXPECT_TRUE(OpenPrinterW(name.data(), printer_.Receive(), nullptr));
  }

  /// An export, with the type of the function that the header declares.
  template <typename Function>
  Function* Export(const char* name) const {
    auto* found =
        reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(dll_.Get(), name)));
    EXPECT_NE(found, nullptr) << name;
    return found;
  }

  const Library dll_{LoadLibraryW(BuiltFile(L"QXUI06X.dll").c_str())};
  PrinterHandle printer_;
};

/// The printer's default device mode, as it comes out of the DLL.
inline DeviceMode DefaultMode() {
  DeviceMode mode;
  BuildDefaultDeviceMode(mode, kUiPrinter);
  mode.pub.dmPaperWidth = 2159;
  mode.pub.dmPaperLength = 2794;
  return mode;
}

}  // namespace quillo::test
