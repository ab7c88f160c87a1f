#pragma once

#include "base/ddi.h"

#include <string>

#include "base/system_owners.h"
#include "host/engine/driver_functions.h"

namespace quillo::host {

/// A printer graphics driver DLL, loaded and enabled.
///
/// Before the first call into the module, its imports of engine services are bound to those of this
/// process, as Wine has none; so are its imports of GDI that record less than on Windows (see
/// page_records.h).
class DriverModule {
 public:
  /// Loads the DLL and enables the driver. Throws DriverFailure.
  explicit DriverModule(const std::wstring& path);
  ~DriverModule();
  DriverModule(const DriverModule&) = delete;
  DriverModule& operator=(const DriverModule&) = delete;

  const DriverFunctions& Functions() const { return functions_; }
  HMODULE Module() const { return module_.Get(); }

 private:
  // The driver loads and frees these several times a page. As in the spooler, they are there
  // anyway.
  Library used_by_driver_[2];
  Library module_;
  PFN_DrvDisableDriver disable_driver_ = nullptr;
  DriverFunctions functions_;
};

}  // namespace quillo::host
