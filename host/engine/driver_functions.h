#pragma once

#include "base/ddi.h"

#include <stdexcept>
#include <string>

namespace quillo::host {

/// A call that the driver refused, or that could not be made at all.
class DriverFailure : public std::runtime_error {
 public:
  /// `call` names the function, `last_error` is the thread's error code afterwards (0: none).
  DriverFailure(const std::string& call, DWORD last_error);
  const std::string& Call() const { return call_; }
  DWORD LastError() const { return last_error_; }

 private:
  std::string call_;
  DWORD last_error_;
};

/// Every DDI function that this engine uses: its name, and whether a driver must have it.
// clang-format off
#define QUILLO_DDI_FUNCTIONS(X) \
  X(EnablePDEV, true)           \
  X(ResetPDEV, false)           \
  X(CompletePDEV, true)         \
  X(DisablePDEV, true)          \
  X(EnableSurface, true)        \
  X(DisableSurface, true)       \
  X(StartDoc, true)             \
  X(StartPage, true)            \
  X(SendPage, true)             \
  X(EndDoc, true)               \
  X(Escape, false)              \
  X(RealizeBrush, false)        \
  X(BitBlt, false)              \
  X(StretchBlt, false)          \
  X(CopyBits, false)            \
  X(Paint, false)               \
  X(FillPath, false)            \
  X(StrokePath, false)          \
  X(StrokeAndFillPath, false)   \
  X(LineTo, false)              \
  X(AlphaBlend, false)          \
  X(TextOut, false)             \
  X(GetGlyphMode, false)
// clang-format on

/// A driver's DDI table by name; a function that the driver lacks is null.
struct DriverFunctions {
#define QUILLO_MEMBER(name, required) PFN_Drv##name name = nullptr;
  QUILLO_DDI_FUNCTIONS(QUILLO_MEMBER)
#undef QUILLO_MEMBER

  /// Sorts a driver's table by index; ignores entries that this engine never uses.
  /// Throws DriverFailure when a function that every driver must have is missing.
  static DriverFunctions FromTable(const DRVENABLEDATA& table);
};

}  // namespace quillo::host
