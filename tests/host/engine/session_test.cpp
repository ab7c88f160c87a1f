#include <gtest/gtest.h>

#include "host/engine/print_session.h"
#include "host/engine/services/surfaces.h"
#include "tests/host/engine/fake_driver.h"

namespace quillo::host {
namespace {

DEVMODEW Mode(short paper) {
  DEVMODEW mode{};
  mode.dmSize = sizeof mode;
  mode.dmPaperSize = paper;
  return mode;
}

using Calls = std::vector<std::string>;

TEST(PrintSession, PagesOnTwoSheets_ResetTheDeviceBetween) {
  FakeDriver driver;
  {
    PrintSession session(driver.functions, {}, Mode(9));
    session.StartDocument(L"name", 7);
    for (const short paper : {9, 9, 8}) {
      session.StartPage(Mode(paper));
      session.SendPage();
    }
    session.EndDocument();
  }
  EXPECT_EQ(driver.calls,
            (Calls{"EnablePDEV 9",  "CompletePDEV 1",  "EnableSurface 1",  "StartDoc 1 name 7",
                   "StartPage 1",   "SendPage 1",      "StartPage 1",      "SendPage 1",  //
                   "EnablePDEV 8",  "CompletePDEV 2",  "ResetPDEV 1 2",    "DisableSurface 1",
                   "DisablePDEV 1", "EnableSurface 2", "StartDoc 2 - 0",   "StartPage 2",
                   "SendPage 2",    "EndDoc 2",        "DisableSurface 2", "DisablePDEV 2"}));
  EXPECT_EQ(LiveSurfaceCount(), 0u);
}

struct RefusalCase {
  const char* refusing;
  Calls tail;  // from the refused call on
};

TEST(PrintSession, RefusedCall_IsNamedAndEverythingIsTornDown) {
  const RefusalCase cases[] = {
      {"EnablePDEV", {"EnablePDEV 9"}},
      {"EnableSurface", {"EnableSurface 1", "DisablePDEV 1"}},
      {"StartDoc", {"StartDoc 1 name 7", "DisableSurface 1", "DisablePDEV 1"}},
      {"StartPage", {"StartPage 1", "EndDoc 1 abort", "DisableSurface 1", "DisablePDEV 1"}},
      {"SendPage", {"SendPage 1", "EndDoc 1 abort", "DisableSurface 1", "DisablePDEV 1"}},
      {"ResetPDEV",
       {"ResetPDEV 1 2", "DisablePDEV 2", "EndDoc 1 abort", "DisableSurface 1", "DisablePDEV 1"}},
      {"EndDoc", {"EndDoc 2", "DisableSurface 2", "DisablePDEV 2"}},
  };
  for (const RefusalCase& c : cases) {
    FakeDriver driver;
    driver.refusing = c.refusing;
    try {
      PrintSession session(driver.functions, {}, Mode(9));
      session.StartDocument(L"name", 7);
      for (const short paper : {9, 8}) {
        session.StartPage(Mode(paper));
        session.SendPage();
      }
      session.EndDocument();
      FAIL() << c.refusing;
    } catch (const DriverFailure& failure) {
      EXPECT_EQ(failure.Call(), std::string("Drv") + c.refusing);
      EXPECT_EQ(failure.LastError(), ULONG{ERROR_GEN_FAILURE});
    }
    const size_t length = std::min(c.tail.size(), driver.calls.size());
    EXPECT_EQ(Calls(driver.calls.end() - static_cast<ptrdiff_t>(length), driver.calls.end()),
              c.tail);
    EXPECT_EQ(LiveSurfaceCount(), 0u);
  }
}

TEST(DriverFunctions, TableWithoutARequiredFunction_IsRefusedByName) {
  const PFN any = [] { return LONG_PTR{0}; };
  DRVFN entries[] = {{INDEX_DrvEnablePDEV, any}, {4000000000u, nullptr}};
  try {
    DriverFunctions::FromTable({DDI_DRIVER_VERSION_NT5_01, 2, entries});
    FAIL();
  } catch (const DriverFailure& failure) {
    EXPECT_NE(failure.Call().find("DrvCompletePDEV"), std::string::npos);
  }
}

}  // namespace
}  // namespace quillo::host
