#include "host/base/processor.h"

#include "base/windows.h"

#include <gtest/gtest.h>
#include <thread>

namespace quillo::host {
namespace {

DWORD_PTR AllProcessors() {
  DWORD_PTR of_process = 0, all = 0;
  GetProcessAffinityMask(GetCurrentProcess(), &of_process, &all);
  return all;
}

/// The mask of this thread, which the call that tells it replaces.
DWORD_PTR MaskHere() {
  const DWORD_PTR mask = SetThreadAffinityMask(GetCurrentThread(), AllProcessors());
  SetThreadAffinityMask(GetCurrentThread(), mask);
  return mask;
}

/// The mask of a new thread.
DWORD_PTR MaskOfThread(bool leaves) {
  DWORD_PTR mask = 0;
  std::thread([&] {
    if (leaves) LeaveServersProcessor();
    mask = MaskHere();
  }).join();
  return mask;
}

TEST(ServersProcessorScope, ThreadsStay_ThoseThatComputeLeave) {
  if (AllProcessors() == 1) GTEST_SKIP() << "one processor";
  {
    const ServersProcessorScope scope("1");
    EXPECT_EQ(MaskHere(), 2u);
    EXPECT_EQ(MaskOfThread(false), 2u);
    EXPECT_EQ(MaskOfThread(true), AllProcessors());
  }
  EXPECT_EQ(MaskHere(), AllProcessors());
  EXPECT_EQ(MaskOfThread(false), AllProcessors());
}

TEST(ServersProcessorScope, WithoutProcessor_NothingIsDone) {
  for (const char* const number :
       {static_cast<const char*>(nullptr), "", "last", "-1", "64", "999", "4294967296"}) {
    const ServersProcessorScope scope(number);
    EXPECT_EQ(MaskOfThread(false), AllProcessors()) << (number == nullptr ? "none" : number);
  }
}

}  // namespace
}  // namespace quillo::host
