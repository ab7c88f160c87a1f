#include "fuzz/harness/runs.h"

#include "base/windows.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <process.h>
#include <thread>

namespace quillo::harness {
namespace {

constexpr ULONGLONG kLimit = 60'000;  // milliseconds of a run
constexpr unsigned kProgress = 1000;  // runs between lines that say how far they are

unsigned share = 1, from = 0, to = ~0u, only = ~0u;  // of the command line
unsigned number = 0, found = 0;
std::function<std::string()> describe_run;
std::atomic<ULONGLONG> started = 0;  // 0: no run is being made

void Print(const std::string& what) {
  ++found;
  std::printf("run %u (%s): %s\n", number, describe_run().c_str(), what.c_str());
  std::fflush(stdout);
}

/// This process is done for: another one makes the runs that are left.
void GoOnElsewhere() {
  started = 0;
  intptr_t rest = 0;
  if (only == ~0u) {
    wchar_t program[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    const std::wstring every = L"--share=" + std::to_wstring(share);
    const std::wstring next = L"--from=" + std::to_wstring(number + 1);
    const std::wstring end = L"--to=" + std::to_wstring(to);
    rest = _wspawnl(_P_WAIT, program, L"runs", every.c_str(), next.c_str(), end.c_str(), nullptr);
  }
  TerminateProcess(GetCurrentProcess(), static_cast<UINT>(rest) + 1);
}

LONG WINAPI Crashed(EXCEPTION_POINTERS* exception) {
  char what[64];
  const EXCEPTION_RECORD& record = *exception->ExceptionRecord;
  std::snprintf(what, sizeof what, "exception %lX at %p", record.ExceptionCode,
                record.ExceptionAddress);
  Print(what);
  GoOnElsewhere();
  return EXCEPTION_EXECUTE_HANDLER;
}

void Watch(HANDLE running_thread) {
  while (started == 0 || GetTickCount64() - started < kLimit) Sleep(1000);
  Print("hangs");
  SuspendThread(running_thread);
  GoOnElsewhere();
}

}  // namespace

Runs::Runs(int count, char** arguments) {
  for (int i = 1; i < count; ++i) {
    std::sscanf(arguments[i], "--share=%u", &share);
    std::sscanf(arguments[i], "--from=%u", &from);
    std::sscanf(arguments[i], "--to=%u", &to);
    std::sscanf(arguments[i], "--only=%u", &only);
  }
}

int Runs::Make(unsigned count, const std::function<void(unsigned number)>& run,
               std::function<std::string()> describe) {
  describe_run = std::move(describe);
  SetUnhandledExceptionFilter(Crashed);
  HANDLE thread = nullptr;
  DuplicateHandle(GetCurrentProcess(), GetCurrentThread(), GetCurrentProcess(), &thread, 0, FALSE,
                  DUPLICATE_SAME_ACCESS);
  std::thread(Watch, thread).detach();
  unsigned made = 0;
  for (number = from; number < std::min(count, to); ++number) {
    if (only != ~0u ? number != only : number % share != 0) continue;
    started = GetTickCount64();
    run(number);
    if (++made % kProgress != 0) continue;
    std::printf("at run %u\n", number);
    std::fflush(stdout);
  }
  started = 0;
  std::printf("%u of %u runs made, %u findings\n", made, count, found);
  return found == 0 ? 0 : 1;
}

void Runs::Report(const std::string& what) { Print(what); }

}  // namespace quillo::harness
