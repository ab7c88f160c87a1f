#pragma once

#include "base/windows.h"

#include <objbase.h>

namespace quillo::host {

/// Holds an object that other processes call, and takes it from them at the end of the scope; it
/// must outlive that. COM has to be there at both ends.
///
/// Without this an object is withdrawn by its last user's release, and Wine, which may miss the end
/// of a call then, waits for it forever. What is taken back is not waited for.
class ServedObject {
 public:
  explicit ServedObject(IUnknown& object) : object_(object) {
    CoLockObjectExternal(&object_, TRUE, FALSE);
  }
  ~ServedObject() { CoDisconnectObject(&object_, 0); }
  ServedObject(const ServedObject&) = delete;
  ServedObject& operator=(const ServedObject&) = delete;

 private:
  IUnknown& object_;
};

}  // namespace quillo::host
