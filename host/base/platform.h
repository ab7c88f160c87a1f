#pragma once

namespace quillo::host {

/// Whether this is Wine, which lacks what an installer sets up on Windows.
bool RunsUnderWine();

}  // namespace quillo::host
