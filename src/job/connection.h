#pragma once

#include "base/windows.h"

#include "base/com_owners.h"
#include "interface/quillo.h"

namespace quillo {

/// Takes up the callback interface that the client left, marshalled, in the connection file of the
/// job. The file is read once and deleted whatever happened. The failing HRESULT when there is no
/// client; `client` is then empty.
HRESULT OpenConnection(DWORD job_id, ComPtr<IQuilloClient>& client);

}  // namespace quillo
