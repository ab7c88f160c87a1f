#pragma once

#include "base/windows.h"

#include "base/owner.h"
#include "config/custom_paper_list.h"
#include "config/settings_value.h"

namespace quillo {

/// A paper that is all zero, in a list of its own; null when memory is short.
CustomPaper* NewCustomPaper();

/// Frees every paper of a list.
void FreeCustomPapers(CustomPaper* head);

struct CustomPapersTraits {
  using Type = CustomPaper*;
  static constexpr Type kNull = nullptr;
  static void Release(Type head) { FreeCustomPapers(head); }
};
using CustomPapers = Owner<CustomPapersTraits>;

/// Reads a printer's custom papers: those of the machine and, unless this user is an administrator,
/// the user's own behind them. Of a number that both have, the machine's paper stays. False when no
/// paper could be read.
bool LoadCustomPapers(const wchar_t* printer, CustomPapers& papers);

/// Writes the list for the machine when this user is an administrator, else for the user.
SettingsResult SaveCustomPapers(const wchar_t* printer, const CustomPaper* head);

/// The paper that dmPaperSize selects among the custom papers of the printer dmDeviceName; false
/// when there is none. The copy is in no list.
bool FindCustomPaper(const DEVMODEW& mode, CustomPaper& paper);

}  // namespace quillo
