#include "host/engine/driver_module.h"

#include <gtest/gtest.h>

namespace quillo::host {
namespace {

TEST(DriverModule, WrongModule_IsRefusedByName) {
  const struct {
    const wchar_t* path;
    const char* call;
  } cases[] = {{L"C:\\no such driver.dll", "loading the driver"},
               {L"C:\\windows\\system32\\version.dll", "finding DrvQueryDriverInfo"}};
  for (const auto& c : cases) {
    try {
      const DriverModule module(c.path);
      FAIL();
    } catch (const DriverFailure& failure) {
      EXPECT_EQ(failure.Call(), c.call);
      EXPECT_NE(failure.LastError(), 0u);
    }
  }
}

}  // namespace
}  // namespace quillo::host
