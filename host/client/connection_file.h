#pragma once

#include "base/windows.h"

#include <string>

#include "base/com_owners.h"
#include "host/client/served_object.h"
#include "interface/quillo.h"

namespace quillo::host {

/// The file in the user's TEMP folder by which the driver finds the client of a job. The driver
/// deletes it once it has read it; if it has not, the end of the scope does, which also takes the
/// client from whoever still has it.
class ConnectionFile {
 public:
  /// Marshals `client`, which must outlive the scope, into the file of the job. Throws
  /// SystemFailure.
  ConnectionFile(DWORD job_id, IQuilloClient& client);
  ~ConnectionFile();
  ConnectionFile(const ConnectionFile&) = delete;
  ConnectionFile& operator=(const ConnectionFile&) = delete;

 private:
  explicit ConnectionFile(IQuilloClient& client);

  const ServedObject client_;
  std::wstring path_;
};

}  // namespace quillo::host
