#include <gtest/gtest.h>
#include <optional>

#include "host/emf/drawn_script.h"
#include "host/engine/driver_module.h"
#include "host/engine/print_session.h"
#include "host/printer/printer_setup.h"
#include "host/printer/sheet.h"
#include "host/printer/spool_job.h"
#include "support/built_file.h"
#include "support/holdings.h"
#include "support/line.h"
#include "support/recording_client.h"

// Whole documents through the shipped driver: the engine of the print host on one side, a client on
// the other.
namespace quillo {
namespace {

using test::RecordingClient;

constexpr int kDpi = 300;

class Document : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, COINIT_MULTITHREADED)));
    host::EnsurePrinter(host::kPrinterName, kDpi, {});
    mode_ = host::MakeDeviceMode(host::kPrinterName, {.paper = DMPAPER_A4}, kDpi);
    driver_.emplace(test::BuiltFile(L"QXDRV06X.dll"));
    spool_job_.emplace(host::kPrinterName, L"A document");
    client_.LeaveConnection(spool_job_->Id());
  }
  void TearDown() override {
    driver_.reset();
    EXPECT_EQ(client_.CountLeaks(), 0);
    CoUninitialize();
  }

  std::unique_ptr<host::PrintSession> Start() {
    const host::PrinterPort port = {spool_job_->Printer(), host::kPrinterName, L"FILE:"};
    auto session = std::make_unique<host::PrintSession>(driver_->Functions(), port, mode_.pub);
    session->StartDocument(L"A document", spool_job_->Id());
    return session;
  }

  DeviceMode mode_ = {};
  RecordingClient client_;
  std::optional<host::DriverModule> driver_;
  std::optional<host::SpoolJob> spool_job_;
};

TEST_F(Document, TwoHundredPages_HoldNoMoreThanTwoAndAnotherDocumentFollows) {
  const auto session = Start();
  test::Holdings after_two = {};
  for (int page = 1; page <= 200; ++page) {
    host::Graphics& drawn = session->StartPage(mode_.pub);
    // (Not bitmaps: Wine leaks objects of its own there.)
    for (const char* script : {"lines", "pens_brushes", "paths_clips", "text"}) {
      host::emf::DrawScript(drawn, test::Line("emf/", script, ".txt"));
    }
    session->SendPage();
    client_.calls.clear();
    if (page == 2) after_two = test::Holdings::Now();
  }
  const auto after_all = test::Holdings::Now();
  EXPECT_EQ(after_all.gdi_objects, after_two.gdi_objects);
  EXPECT_EQ(after_all.kernel_handles, after_two.kernel_handles);
  EXPECT_LT(after_all.heap_bytes, after_two.heap_bytes + 64 * 1024);
  session->EndDocument();

  client_.calls.clear();
  SURFOBJ* surface = session->Device().Surface();
  EXPECT_FALSE(driver_->Functions().StartPage(surface));
  EXPECT_FALSE(driver_->Functions().SendPage(surface));
  EXPECT_TRUE(driver_->Functions().EndDoc(surface, ED_ABORTDOC));
  EXPECT_TRUE(client_.calls.empty());
  const host::SpoolJob another(host::kPrinterName, L"Another");
  client_.LeaveConnection(another.Id());
  session->StartDocument(L"Another", another.Id());
  session->StartPage(mode_.pub);
  session->SendPage();
  session->EndDocument();
  EXPECT_EQ(client_.calls.front(),
            test::Line("NotifyJobStart VORNIX Quillo 6 ", another.Id(), " Another"));
  EXPECT_EQ(client_.calls.back(), test::Line("NotifyJobEnd VORNIX Quillo 6 ", another.Id()));
}

}  // namespace
}  // namespace quillo
