#pragma once

namespace quillo::host {

/// Registers the type library in this executable, by which COM marshals the client's calls between
/// processes. On Windows, an installed client's registration stays as it is. Throws
/// SystemFailure.
void RegisterTypeLibrary();

}  // namespace quillo::host
