#pragma once

namespace quillo::host {

/// Registers the type library in this executable, through which COM carries the client's calls from
/// process to process. On Windows, an installed client's registration stays as it is. Throws
/// SystemFailure.
void RegisterTypeLibrary();

}  // namespace quillo::host
