#include "host/client/connection_file.h"

#include <iterator>
#include <objbase.h>

#include "config/user/user_paths.h"
#include "host/base/failure.h"

namespace quillo::host {

namespace {

constexpr char kCannotConnect[] = "cannot make the client's connection file";
// Compatibility: misspelled as drivers and clients have always had it.
constexpr wchar_t kStreamName[] = L"IQuilloConnectionPiont";

}  // namespace

ConnectionFile::ConnectionFile(IQuilloClient& client) : client_(client) {}

// Delegates, so that the destructor runs also when a step fails.
ConnectionFile::ConnectionFile(DWORD job_id, IQuilloClient& client) : ConnectionFile(client) {
  wchar_t folder[MAX_PATH];
  if (UserTempFolder(folder, static_cast<DWORD>(std::size(folder))) == 0) {
    throw SystemFailure(kCannotConnect, "looking up the TEMP folder");
  }
  path_ = std::wstring(folder) + L"\\" + std::to_wstring(job_id) + L".stg";
  constexpr DWORD kMode = STGM_CREATE | STGM_SHARE_EXCLUSIVE | STGM_READWRITE;
  ComPtr<IStorage> storage;
  CheckResult(StgCreateDocfile(path_.c_str(), kMode, 0, storage.Receive()), kCannotConnect,
              "StgCreateDocfile");
  ComPtr<IStream> stream;
  CheckResult(storage->CreateStream(kStreamName, kMode, 0, 0, stream.Receive()), kCannotConnect,
              "CreateStream");
  CheckResult(CoMarshalInterface(stream.Get(), __uuidof(IQuilloClient), &client, MSHCTX_LOCAL,
                                 nullptr, MSHLFLAGS_NORMAL),
              kCannotConnect, "CoMarshalInterface");
}

ConnectionFile::~ConnectionFile() { DeleteFileW(path_.c_str()); }

}  // namespace quillo::host
