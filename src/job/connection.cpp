#include "job/connection.h"

#include "config/user/user_paths.h"
#include "job/job_path.h"

namespace quillo {

namespace {

/// Compatibility: misspelt, because this is the name under which clients write it.
constexpr wchar_t kConnectionStream[] = L"IQuilloConnectionPiont";

bool FileExists(const wchar_t* path) { return GetFileAttributesW(path) != INVALID_FILE_ATTRIBUTES; }

/// The file in the TEMP folder, or the one in the session's folder when the first does not exist.
bool FindConnectionFile(DWORD job_id, JobPath& path) {
  wchar_t folder[MAX_PATH];
  if (UserTempFolder(folder, MAX_PATH) == 0) return false;
  const bool fits = path.Format(L"%s\\%d.stg", folder, static_cast<int>(job_id));
  if (fits && FileExists(path.Text())) return true;
  DWORD session = 0;
  if (!PrintingUserSession(session)) return fits;
  return path.Format(L"%s\\%d\\%d.stg", folder, static_cast<int>(session),
                     static_cast<int>(job_id));
}

HRESULT Unmarshal(const wchar_t* path, ComPtr<IQuilloClient>& client) {
  ComPtr<IStorage> storage;
  HRESULT result = StgOpenStorage(path, nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE, nullptr, 0,
                                  storage.Receive());
  if (FAILED(result)) return result;
  ComPtr<IStream> stream;
  result = storage->OpenStream(kConnectionStream, nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE, 0,
                               stream.Receive());
  if (FAILED(result)) return result;
  void* interface_pointer = nullptr;
  result = CoUnmarshalInterface(stream.Get(), __uuidof(IQuilloClient), &interface_pointer);
  client.Reset(static_cast<IQuilloClient*>(interface_pointer));
  return result;
}

}  // namespace

HRESULT OpenConnection(DWORD job_id, ComPtr<IQuilloClient>& client) {
  client.Reset();
  JobPath path;
  if (!FindConnectionFile(job_id, path)) return E_FAIL;
  const HRESULT result = Unmarshal(path.Text(), client);
  DeleteFileW(path.Text());
  if (FAILED(result)) client.Reset();
  return SUCCEEDED(result) && !client ? E_FAIL : result;
}

}  // namespace quillo
