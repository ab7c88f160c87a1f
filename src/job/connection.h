#pragma once

#include "base/windows.h"

#include "base/com_owners.h"
#include "interface/quillo.h"

namespace quillo {

/// Unmarshals the callback interface that the client left in the connection file of the job. The
/// file is read once and deleted, even when it cannot be read. The failing HRESULT when there is no
/// client; `client` is then empty.
HRESULT OpenConnection(DWORD job_id, ComPtr<IQuilloClient>& client);

}  // namespace quillo
