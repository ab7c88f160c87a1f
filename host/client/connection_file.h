#pragma once

#include "base/windows.h"

#include <string>

#include "base/com_owners.h"
#include "interface/quillo.h"

namespace quillo::host {

/// The file in the user's TEMP folder by which the driver finds the client of a job. The driver
/// deletes it when it has read it; whatever is left of it goes at the end of the scope.
class ConnectionFile {
 public:
  /// Marshals `client` into the file of the job. Throws SystemFailure.
  ConnectionFile(DWORD job_id, IQuilloClient& client);
  ~ConnectionFile();
  ConnectionFile(const ConnectionFile&) = delete;
  ConnectionFile& operator=(const ConnectionFile&) = delete;

 private:
  ConnectionFile() = default;

  std::wstring path_;
};

}  // namespace quillo::host
