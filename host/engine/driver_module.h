#pragma once

#include "base/ddi.h"

#include <string>

#include "base/system_owners.h"
#include "host/engine/driver_functions.h"

namespace quillo::host {

/// A printer graphics driver DLL, loaded and enabled.
///
/// The module's imports of engine services are bound to this process's own services before the
/// first call into it, since the platform's are missing under Wine; so are its imports of GDI where
/// they record less than Windows' (see page_records.h).
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
  Library module_;
  PFN_DrvDisableDriver disable_driver_ = nullptr;
  DriverFunctions functions_;
};

}  // namespace quillo::host
