#include "driver/save_format_modules.h"

#include "base/text.h"

namespace quillo {

namespace {

constexpr SaveFormatModules MakeTable() {
  constexpr const char* kNames[] = {"QxDoc06n.dll", "QxPdf06n.dll",  "QxHTM06n.dll", "QxRTF06n.dll",
                                    "QxTXT06n.dll", "QxDOCX06n.dll", "QxXPS06n.dll"};
  SaveFormatModules table = {};
  for (auto& row : table.names) {
    for (int i = 0; i < 7; ++i) CopyPadded(row[i], kNames[i], sizeof(row[i]));
  }
  return table;
}

}  // namespace

[[gnu::used]] constinit const SaveFormatModules kSaveFormatModules = MakeTable();

}  // namespace quillo
