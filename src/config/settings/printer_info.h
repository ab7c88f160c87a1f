#pragma once

#include "base/windows.h"

#include <winspool.h>

#include "base/system_owners.h"

namespace quillo {

/// A PRINTER_INFO structure of some level with everything that it points to, from the spooler.
template <typename Info>
class PrinterInfo {
 public:
  PrinterInfo(HANDLE printer, DWORD level) {
    DWORD size = 0;
    GetPrinterW(printer, level, nullptr, 0, &size);
    if (size < sizeof(Info)) return;
    GlobalBlock block = GlobalBlock::Allocate(size);
    if (!block) return;
    if (!GetPrinterW(printer, level, static_cast<BYTE*>(block.Get()), size, &size)) return;
    block_ = std::move(block);
  }

  /// Empty when the spooler refuses or memory is short.
  explicit operator bool() const { return static_cast<bool>(block_); }
  const Info* operator->() const { return static_cast<const Info*>(block_.Get()); }

 private:
  GlobalBlock block_;
};

}  // namespace quillo
