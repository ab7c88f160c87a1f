#pragma once

#include "base/windows.h"

#include "base/owner.h"
#include "config/papers/custom_paper_list.h"
#include "config/settings/settings_value.h"

namespace quillo {

/// An all-zero paper; null when memory is short.
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
/// the user's own after them. False when no paper could be read.
///
/// Compatibility: of two papers of one number the machine's wins. Kept for stored settings, where
/// an administrator's paper overrides everybody's.
bool LoadCustomPapers(const wchar_t* printer, CustomPapers& papers);

/// Writes the list for the machine when this user is an administrator, else for the user.
SettingsResult SaveCustomPapers(const wchar_t* printer, const CustomPaper* head);

/// Stores one more paper where SaveCustomPapers does, or replaces the one of its number; everything
/// else stays as it is. SETTINGS_BAD_ARGUMENT for a paper that cannot be printed on,
/// SETTINGS_WRITE_FAILED when no further paper can be added: the store is full, or the machine has
/// a paper of that number, which overrides a user's.
SettingsResult AddCustomPaper(const wchar_t* printer, const CustomPaper& paper);

/// The paper that dmPaperSize selects among the custom papers of the printer dmDeviceName; false
/// when there is none. The copy is in no list.
bool FindCustomPaper(const DEVMODEW& mode, CustomPaper& paper);

}  // namespace quillo
