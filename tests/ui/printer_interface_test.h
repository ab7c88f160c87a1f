#pragma once

#include "base/windows.h"

#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

#include "base/system_owners.h"
#include "config/device_mode/device_mode.h"
#include "host/printer/printer_setup.h"
#include "support/built_file.h"
#include "support/guarded_bytes.h"
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

/// Calls `visit` with each "name=value" of a row's field, and with a reference to the member of the
/// device mode that has the name.
template <typename Visit>
void ForEachMember(DeviceMode& mode, const std::string& members, Visit visit) {
  DEVMODEW& pub = mode.pub;
  std::istringstream words(members);
  for (std::string word; words >> word;) {
    const size_t equals = word.find('=');
    const std::string name = word.substr(0, equals);
    const long value = std::stol(word.substr(equals + 1));
    const auto is = [&](const char* known, auto& member) {
      if (name == known) visit(member, value);
      return name == known;
    };
    EXPECT_TRUE(is("paper", pub.dmPaperSize) || is("width", pub.dmPaperWidth) ||
                is("length", pub.dmPaperLength) || is("orientation", pub.dmOrientation) ||
                is("quality", pub.dmPrintQuality) || is("yres", pub.dmYResolution) ||
                is("copies", pub.dmCopies) || is("source", pub.dmDefaultSource) ||
                is("color", pub.dmColor) || is("bits", pub.dmBitsPerPel) ||
                is("fields", pub.dmFields) || is("specversion", pub.dmSpecVersion) ||
                is("version", pub.dmDriverVersion) || is("size", pub.dmSize) ||
                is("extra", pub.dmDriverExtra) || is("left", mode.own.left.value) ||
                is("margins", mode.own.margins_given) ||
                is("private", mode.own.reserved_before_flag[7]))
        << word;
  }
}

inline void SetMembers(DeviceMode& mode, const std::string& members) {
  ForEachMember(mode, members, [](auto& member, long value) {
    member = static_cast<std::remove_reference_t<decltype(member)>>(value);
  });
}

inline void ExpectMembers(DeviceMode mode, const std::string& members) {
  ForEachMember(mode, members, [&](auto& member, long value) {
    EXPECT_EQ(static_cast<long>(member), value) << members;
  });
}

}  // namespace quillo::test
