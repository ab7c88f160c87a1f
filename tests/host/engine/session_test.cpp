#include <gtest/gtest.h>
#include <sstream>

#include "host/engine/driver_module.h"
#include "host/engine/print_session.h"
#include "host/engine/services/surfaces.h"
#include "support/case_table.h"
#include "tests/host/engine/fake_driver.h"

namespace quillo::host {
namespace {

DEVMODEW Mode(short paper) {
  DEVMODEW mode{};
  mode.dmSize = sizeof mode;
  mode.dmPaperSize = paper;
  return mode;
}

TEST(PrintSession, Table_GivesCallsAndTheOneThatFails) {
  test::CheckCases("host/sessions.txt", [](const std::vector<std::string>& fields) {
    FakeDriver driver;
    driver.refusing = fields[1];
    std::string outcome;
    try {
      PrintSession session(driver.functions, {}, Mode(9));
      session.StartDocument(L"name", 7);
      std::istringstream papers(fields[0]);
      for (short paper = 0; papers >> paper;) {
        session.StartPage(Mode(paper));
        session.SendPage();
      }
      session.EndDocument();
    } catch (const DriverFailure& failure) {
      EXPECT_EQ(failure.LastError(), ULONG{ERROR_GEN_FAILURE});
      outcome = failure.Call() + ": ";
    }
    EXPECT_EQ(LiveSurfaceCount(), 0u);
    for (const std::string& call : driver.calls) outcome += call + ", ";
    return outcome.substr(0, outcome.size() - 2);
  });
}

/// The call of the failure that a driver module or its table leads to.
template <typename Load>
std::string FailureOf(Load load) {
  try {
    load();
    return "none";
  } catch (const DriverFailure& failure) {
    EXPECT_NE(failure.LastError(), 0u);
    return failure.Call();
  }
}

TEST(DriverModule, WrongModuleOrTable_IsRefusedByName) {
  EXPECT_EQ(FailureOf([] { DriverModule(L"C:\\no such driver.dll"); }), "loading the driver");
  EXPECT_EQ(FailureOf([] { DriverModule(L"C:\\windows\\system32\\version.dll"); }),
            "finding DrvQueryDriverInfo");
  const PFN any = [] { return LONG_PTR{0}; };
  DRVFN entries[] = {{INDEX_DrvEnablePDEV, any}, {4000000000u, nullptr}};
  EXPECT_EQ(FailureOf([&] {
              DriverFunctions::FromTable({DDI_DRIVER_VERSION_NT5_01, 2, entries});
            }),
            "DrvEnableDriver: no DrvCompletePDEV in its table");
}

}  // namespace
}  // namespace quillo::host
