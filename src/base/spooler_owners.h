#pragma once

#include "base/windows.h"

#include <winspool.h>

#include "base/owner.h"

namespace quillo {

struct PrinterHandleTraits {
  using Type = HANDLE;
  static constexpr Type kNull = nullptr;
  static void Release(Type printer) { ClosePrinter(printer); }
};
using PrinterHandle = Owner<PrinterHandleTraits>;

}  // namespace quillo
