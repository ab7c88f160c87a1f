#include "job/connection.h"

#include "config/user/as_user.h"
#include "config/user/user_files.h"
#include "config/user/user_paths.h"
#include "job/client_reference.h"
#include "job/job_path.h"

namespace quillo {

namespace {

/// Compatibility: misspelt, because this is the name under which clients write it.
constexpr wchar_t kConnectionStream[] = L"IQuilloConnectionPiont";

/// Between two attempts, in milliseconds: whoever still holds the file may let go of it.
constexpr DWORD kPause = 50;

bool FileExists(const wchar_t* path) { return GetFileAttributesW(path) != INVALID_FILE_ATTRIBUTES; }

/// The file in the user's folder, or the one in the session's folder when the first does not exist.
bool FindConnectionFile(const wchar_t* folder, DWORD job_id, JobPath& path) {
  const bool fits = path.Format(L"%s\\%d.stg", folder, static_cast<int>(job_id));
  if (fits && FileExists(path.Text())) return true;
  DWORD session = 0;
  if (!PrintingUserSession(session)) return fits;
  return path.Format(L"%s\\%d\\%d.stg", folder, static_cast<int>(session),
                     static_cast<int>(job_id));
}

HRESULT ReadConnectionFile(const wchar_t* path, Reference& reference) {
  if (!IsPlainFileOrFree(path)) return E_ACCESSDENIED;
  ComPtr<IStorage> storage;
  HRESULT result = StgOpenStorage(path, nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE, nullptr, 0,
                                  storage.Receive());
  if (FAILED(result)) return result;
  ComPtr<IStream> stream;
  result = storage->OpenStream(kConnectionStream, nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE, 0,
                               stream.Receive());
  return SUCCEEDED(result) ? ReadReference(*stream.Get(), reference) : result;
}

/// The reference that the client left; the file is gone then.
HRESULT TakeReference(DWORD job_id, Reference& reference) {
  wchar_t folder[MAX_PATH];
  if (!UserFilesFolder(folder)) return E_FAIL;
  const AsUser user;
  JobPath path;
  if (!user || !FindConnectionFile(folder, job_id, path)) return E_FAIL;
  HRESULT result = ReadConnectionFile(path.Text(), reference);
  if (FAILED(result) && FileExists(path.Text())) {
    Sleep(kPause);
    result = ReadConnectionFile(path.Text(), reference);
  }
  DeleteFileW(path.Text());
  return result;
}

}  // namespace

HRESULT OpenConnection(DWORD job_id, ComPtr<IQuilloClient>& client) {
  client.Reset();
  Reference reference;
  const HRESULT result = TakeReference(job_id, reference);
  return SUCCEEDED(result) ? UnmarshalClient(reference, client) : result;
}

}  // namespace quillo
