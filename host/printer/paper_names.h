#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace quillo::host {

/// The names of a standard form.
struct PaperName {
  int16_t paper;             // dmPaperSize
  std::string_view name;     // for users
  std::string_view ppd_key;  // by which Wine's printer driver finds the paper number
};

/// All standard forms, by paper number.
std::span<const PaperName> PaperNames();

}  // namespace quillo::host
