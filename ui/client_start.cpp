#include "ui/client_start.h"

#include "base/module_instance.h"
#include "base/system_owners.h"
#include "base/text.h"
#include "config/user/client_claim.h"
#include "config/user/user_paths.h"

namespace quillo {

namespace {

constexpr wchar_t kClient[] = L"quillo-client.exe";
constexpr DWORD kLimit = 20'000;  // milliseconds
constexpr DWORD kClaimedLimit = 2'000;
constexpr DWORD kStep = 50;

using Path = wchar_t[MAX_PATH];

bool FailWith(DWORD error) {
  SetLastError(error);
  return false;
}

/// The path of the program beside this DLL.
bool FindClient(Path& client) {
  const DWORD length = GetModuleFileNameW(g_module_instance, client, MAX_PATH);
  if (length == 0 || length == MAX_PATH) return FailWith(ERROR_BAD_PATHNAME);
  const auto folder = static_cast<size_t>(FileNamePart(client) - client);
  if (folder + ARRAYSIZE(kClient) > MAX_PATH) return FailWith(ERROR_BAD_PATHNAME);
  CopyPadded(client + folder, kClient, ARRAYSIZE(kClient));
  return true;
}

bool ConnectionFileOf(DWORD job_id, Path& file) {
  Path folder;
  constexpr size_t kRoom = 16;  // "\4294967295.stg"
  if (UserTempFolder(folder, MAX_PATH) == 0 || lstrlenW(folder) + kRoom > MAX_PATH) {
    return FailWith(ERROR_BAD_PATHNAME);
  }
  wsprintfW(file, L"%s\\%u.stg", folder, job_id);
  return true;
}

/// Whether the file is there and written: while the client writes, nobody else can open it.
bool Stands(const Path& file) {
  return static_cast<bool>(
      KernelHandle(CreateFileW(file, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                               FILE_ATTRIBUTE_NORMAL, nullptr)));
}

/// Whether a client that waits for this user's jobs has found the job before this DLL did.
bool IsClaimed(DWORD job_id) {
  wchar_t name[64];
  wsprintfW(name, kClientClaim, job_id);
  return static_cast<bool>(KernelHandle(OpenMutexW(SYNCHRONIZE, FALSE, name)));
}

KernelHandle StartProcess(Path& program, DWORD job_id) {
  wchar_t command[MAX_PATH + 32];
  wsprintfW(command, L"\"%s\" --job %u", program, job_id);
  STARTUPINFOW startup = {};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION started = {};
  Path folder;  // not the application's, which would then be in use
  if (GetSystemDirectoryW(folder, MAX_PATH) == 0 ||
      !CreateProcessW(program, command, nullptr, nullptr, FALSE, CREATE_NO_WINDOW, nullptr, folder,
                      &startup, &started)) {
    return KernelHandle();
  }
  const KernelHandle thread(started.hThread);
  return KernelHandle(started.hProcess);
}

}  // namespace

bool StartClient(DWORD job_id) {
  Path client, connection;
  if (!FindClient(client) || !ConnectionFileOf(job_id, connection)) return false;
  if (IsClaimed(job_id)) {
    // The driver may have taken the file by now.
    for (DWORD waited = 0; waited < kClaimedLimit && !Stands(connection); waited += kStep) {
      Sleep(kStep);
    }
    return true;
  }
  // One that an earlier client of this number left behind reaches nobody.
  DeleteFileW(connection);
  const KernelHandle process = StartProcess(client, job_id);
  if (!process) return false;
  for (DWORD waited = 0; !Stands(connection); waited += kStep) {
    if (waited >= kLimit) return FailWith(ERROR_TIMEOUT);
    if (WaitForSingleObject(process.Get(), kStep) == WAIT_OBJECT_0) {
      // Another client may have taken the job meanwhile.
      return IsClaimed(job_id) || FailWith(ERROR_PROCESS_ABORTED);
    }
  }
  return true;
}

}  // namespace quillo
