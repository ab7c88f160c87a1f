#include "base/windows.h"

#include <cstdio>

// Part of each program: a crash, such as one of the driver in it, ends it with an error. Left to
// itself, Wine loses the exit code of a program that has had a second thread, and the crash would
// count as success.
namespace quillo::host {
namespace {

constexpr UINT kCrashed = 4;  // as when the driver fails

LONG WINAPI EndWithError(EXCEPTION_POINTERS* exception) {
  const EXCEPTION_RECORD& record = *exception->ExceptionRecord;
  std::fprintf(stderr, "crashed: exception 0x%lx at %p\n", record.ExceptionCode,
               record.ExceptionAddress);
  TerminateProcess(GetCurrentProcess(), kCrashed);
  return EXCEPTION_CONTINUE_SEARCH;
}

/// Nothing but the exit: the stack that is left does not last for more.
LONG WINAPI EndOnOverflow(EXCEPTION_POINTERS* exception) {
  if (exception->ExceptionRecord->ExceptionCode == EXCEPTION_STACK_OVERFLOW) {
    TerminateProcess(GetCurrentProcess(), kCrashed);
  }
  return EXCEPTION_CONTINUE_SEARCH;
}

[[maybe_unused]] const auto g_previous = SetUnhandledExceptionFilter(EndWithError);
[[maybe_unused]] const auto g_handler = AddVectoredExceptionHandler(1, EndOnOverflow);

}  // namespace
}  // namespace quillo::host
