#pragma once

#include "base/windows.h"

#include <oaidl.h>

#include "base/com_owners.h"

namespace quillo::host {

/// The type library in this executable, by which COM marshals the client's calls between processes.
/// Whoever calls or is called holds it: otherwise COM reads it anew for every page's object. Throws
/// SystemFailure.
[[nodiscard]] ComPtr<ITypeLib> LoadTypeLibrary();

/// Loads and registers it. On Windows, an installed client's registration stays as it is. Throws
/// SystemFailure.
[[nodiscard]] ComPtr<ITypeLib> RegisterTypeLibrary();

}  // namespace quillo::host
