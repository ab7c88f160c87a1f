#include "host/base/processor.h"

#include "base/windows.h"

#include <atomic>
#include <charconv>
#include <cstring>

namespace quillo::host {

namespace {

std::atomic<DWORD_PTR> g_servers = 0;  // a mask of the server's processor; 0 outside of a scope

DWORD_PTR AllProcessors() {
  DWORD_PTR of_process = 0, all = 0;
  GetProcessAffinityMask(GetCurrentProcess(), &of_process, &all);
  return all;
}

/// 0 for what is no processor of this machine.
DWORD_PTR MaskOf(const char* number) {
  if (number == nullptr) return 0;
  constexpr unsigned kNone = sizeof(DWORD_PTR) * 8;
  unsigned processor = kNone;
  std::from_chars(number, number + std::strlen(number), processor);
  return processor < kNone ? DWORD_PTR{1} << processor & AllProcessors() : 0;
}

void CALLBACK OnThread(void*, DWORD reason, void*) {
  const DWORD_PTR servers = g_servers;
  if (reason == DLL_THREAD_ATTACH && servers != 0) {
    SetThreadAffinityMask(GetCurrentThread(), servers);
  }
}

/// The loader calls what stands in this section, for COM's threads, too.
[[gnu::section(".CRT$XLC"), gnu::used]] const PIMAGE_TLS_CALLBACK kThreadCallback = OnThread;

}  // namespace

ServersProcessorScope::ServersProcessorScope(const char* number) {
  g_servers = MaskOf(number);
  if (g_servers == 0) return;
  // Wine has taken the processor that the script left to the process as a bound for its threads.
  SetProcessAffinityMask(GetCurrentProcess(), AllProcessors());
  SetThreadAffinityMask(GetCurrentThread(), g_servers);
}

ServersProcessorScope::~ServersProcessorScope() {
  LeaveServersProcessor();
  g_servers = 0;
}

void LeaveServersProcessor() {
  if (g_servers != 0) SetThreadAffinityMask(GetCurrentThread(), AllProcessors());
}

}  // namespace quillo::host
