#include "base/windows.h"

#include <cstdio>
#include <cstdlib>

namespace quillo::test {
namespace {

/// Ends a test program that crashes. Left to itself, Wine loses the exit code of a program that has
/// had a second thread, and the crash would count as success.
LONG WINAPI EndWithError(EXCEPTION_POINTERS* exception) {
  const EXCEPTION_RECORD& record = *exception->ExceptionRecord;
  std::fprintf(stderr, "crashed: exception 0x%lx at %p\n", record.ExceptionCode,
               record.ExceptionAddress);
  TerminateProcess(GetCurrentProcess(), EXIT_FAILURE);
  return EXCEPTION_CONTINUE_SEARCH;
}

[[maybe_unused]] const auto g_previous = SetUnhandledExceptionFilter(EndWithError);

}  // namespace
}  // namespace quillo::test
