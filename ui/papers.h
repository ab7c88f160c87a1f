#pragma once

#include "base/windows.h"

#include <cstddef>
#include <cstdint>

#include "config/papers/custom_papers.h"

namespace quillo {

/// A paper that the printer offers.
struct OfferedPaper {
  int16_t number;    // dmPaperSize
  Extent size;       // upright, 0.1 mm
  wchar_t name[64];  // terminated
};

/// Has the settings code of this process open printers with no more access than printing needs: the
/// first access asked for holds for all, and users of a printer may not administer it.
void OpenPrintersForUse(const wchar_t* printer);

/// The standard forms, then a printer's custom papers that can be printed on.
class OfferedPapers {
 public:
  /// `printer` may be null: then there are no custom papers.
  explicit OfferedPapers(const wchar_t* printer);

  /// Calls `visit` with each paper in turn until it returns false.
  template <typename Visit>
  void ForEach(Visit visit) const {
    for (size_t i = 0; i < StandardCount(); ++i) {
      if (!visit(Standard(i))) return;
    }
    for (const CustomPaper* paper = custom_.Get(); paper != nullptr; paper = paper->next) {
      if (CanBePrintedOn(*paper) && !visit(Custom(*paper))) return;
    }
  }

 private:
  static size_t StandardCount();
  static OfferedPaper Standard(size_t index);
  static OfferedPaper Custom(const CustomPaper& paper);

  CustomPapers custom_;
};

}  // namespace quillo
