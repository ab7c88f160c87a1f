#pragma once

#include "base/windows.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "base/system_owners.h"
#include "config/device_mode/device_mode.h"
#include "host/printer/printer_setup.h"
#include "support/built_file.h"
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

/// Memory whose end is the end of what may be touched.
class GuardedBytes {
 public:
  explicit GuardedBytes(size_t size) : size_(size) {
    constexpr size_t kPage = 4096;
    const size_t room = (size + kPage - 1) / kPage * kPage;
    base_ = static_cast<std::byte*>(
        VirtualAlloc(nullptr, room + kPage, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
    DWORD old = 0;
    VirtualProtect(base_ + room, kPage, PAGE_NOACCESS, &old);
    begin_ = base_ + room - size;
  }
  ~GuardedBytes() { VirtualFree(base_, 0, MEM_RELEASE); }
  GuardedBytes(const GuardedBytes&) = delete;
  GuardedBytes& operator=(const GuardedBytes&) = delete;

  std::byte* Get() const { return begin_; }
  DEVMODEW* Mode() const { return reinterpret_cast<DEVMODEW*>(begin_); }
  size_t Size() const { return size_; }

 private:
  size_t size_;
  std::byte* base_;
  std::byte* begin_;
};

}  // namespace quillo::test
