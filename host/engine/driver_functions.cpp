#include "host/engine/driver_functions.h"

#include <array>

namespace quillo::host {
namespace {

std::string Describe(const std::string& call, DWORD last_error) {
  std::string text = call + " failed";
  if (last_error != 0) text += " (error " + std::to_string(last_error) + ")";
  return text;
}

}  // namespace

DriverFailure::DriverFailure(const std::string& call, DWORD last_error)
    : std::runtime_error(Describe(call, last_error)), call_(call), last_error_(last_error) {}

DriverFunctions DriverFunctions::FromTable(const DRVENABLEDATA& table) {
  using AnyFunction = void (*)();
  std::array<AnyFunction, INDEX_LAST> by_index{};
  for (ULONG i = 0; i < table.c; ++i) {
    const DRVFN& entry = table.pdrvfn[i];
    if (entry.iFunc < by_index.size())
      by_index[entry.iFunc] = reinterpret_cast<AnyFunction>(entry.pfn);
  }

  DriverFunctions functions;
#define QUILLO_TAKE(name, required)                                                             \
  functions.name = reinterpret_cast<PFN_Drv##name>(by_index[INDEX_Drv##name]);                  \
  if (required && functions.name == nullptr) {                                                  \
    throw DriverFailure("DrvEnableDriver: no Drv" #name " in its table", ERROR_PROC_NOT_FOUND); \
  }
  QUILLO_DDI_FUNCTIONS(QUILLO_TAKE)
#undef QUILLO_TAKE
  return functions;
}

}  // namespace quillo::host
