#pragma once

#include "base/windows.h"

#include <filesystem>
#include <oaidl.h>

#include "base/com_owners.h"

namespace quillo::host {

/// The type library in a client's executable, by which COM marshals its calls between processes.
/// Whoever calls or is called holds it: otherwise COM reads it anew for every page's object. Throws
/// SystemFailure.
[[nodiscard]] ComPtr<ITypeLib> LoadTypeLibrary(const std::filesystem::path& program);

/// Loads and registers this executable's. On Windows, an installed client's registration stays as
/// it is. Throws SystemFailure.
[[nodiscard]] ComPtr<ITypeLib> RegisterTypeLibrary();

}  // namespace quillo::host
