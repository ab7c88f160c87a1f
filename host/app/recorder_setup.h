#pragma once

#include <filesystem>

namespace quillo::host {

/// Makes Wine's GDI ask the recorder, which lies in `folder`, for the DCs of the installed printer,
/// and the printer the default one. The recorder hands out Wine's own driver in processes that no
/// print host has started. Throws SystemFailure.
void InstallRecorder(const std::filesystem::path& folder);

}  // namespace quillo::host
