#include "host/app_recorder/host_connection.h"

#include <algorithm>

namespace quillo::app {

namespace {

constexpr DWORD kLongestWait = 30'000;  // milliseconds
constexpr DWORD kMaxPipeName = 256;

// One request at a time: they share the buffers.
SRWLOCK g_lock = SRWLOCK_INIT;
HANDLE g_pipe = INVALID_HANDLE_VALUE;
int g_users = 0;
std::byte g_request[kMaxRequestBytes];
std::byte g_answer[kMaxAnswerBytes];

class Lock {
 public:
  Lock() { AcquireSRWLockExclusive(&g_lock); }
  ~Lock() { ReleaseSRWLockExclusive(&g_lock); }
  Lock(const Lock&) = delete;
  Lock& operator=(const Lock&) = delete;
};

/// False for no name, or one that is too long.
bool GetPipeName(wchar_t (&name)[kMaxPipeName]) {
  const DWORD length = GetEnvironmentVariableW(kPipeVariable, name, kMaxPipeName);
  return length != 0 && length < kMaxPipeName;
}

void Connect() {
  wchar_t name[kMaxPipeName];
  if (!GetPipeName(name)) return;
  do {
    g_pipe = CreateFileW(name, GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  } while (g_pipe == INVALID_HANDLE_VALUE && GetLastError() == ERROR_PIPE_BUSY &&
           WaitNamedPipeW(name, kLongestWait));
  DWORD mode = PIPE_READMODE_MESSAGE;
  if (g_pipe != INVALID_HANDLE_VALUE) SetNamedPipeHandleState(g_pipe, &mode, nullptr, nullptr);
}

void Disconnect() {
  if (g_pipe != INVALID_HANDLE_VALUE) CloseHandle(g_pipe);
  g_pipe = INVALID_HANDLE_VALUE;
}

}  // namespace

bool HasHost() {
  wchar_t name[kMaxPipeName];
  return GetPipeName(name);
}

HostConnection::HostConnection() {
  const Lock lock;
  if (g_users++ == 0) Connect();
}

HostConnection::~HostConnection() {
  const Lock lock;
  if (--g_users == 0) Disconnect();
}

Reply Ask(const RequestHeader& header, std::span<const std::byte> mode,
          std::span<const std::byte> data, std::span<std::byte> out) {
  constexpr Reply kNone = {0, 0};
  const Lock lock;
  const auto request = PutRequest(g_request, header, mode, data);
  if (request.empty() || g_pipe == INVALID_HANDLE_VALUE) return kNone;
  DWORD done = 0;
  if (!WriteFile(g_pipe, request.data(), static_cast<DWORD>(request.size()), &done, nullptr) ||
      !ReadFile(g_pipe, g_answer, sizeof g_answer, &done, nullptr)) {
    Disconnect();
    return kNone;
  }
  const auto answer = ParseAnswer(std::span(g_answer).first(done));
  if (!answer) return kNone;
  const size_t bytes = std::min(answer->data.size(), out.size());
  std::copy_n(answer->data.begin(), bytes, out.begin());
  return {answer->result, bytes};
}

}  // namespace quillo::app
