#pragma once

namespace quillo::host {

/// Whether this is Wine, where what an installer sets up on Windows is missing.
bool RunsUnderWine();

}  // namespace quillo::host
