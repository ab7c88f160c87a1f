#include "base/windows.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "host/client/client_process.h"
#include "host/printer/printer_setup.h"
#include "host/printer/spool_job.h"
#include "job/job.h"
#include "support/built_file.h"

// The driver's job object in this process, a client in another one.
namespace quillo::host {
namespace {

namespace fs = std::filesystem;

// What a document without fonts and errors does not make.
TEST(ClientProcess, RareCalls_ReachTheClient) {
  const fs::path folder = fs::temp_directory_path() / L"quillo client test";
  fs::create_directories(folder);
  const fs::path font = fs::temp_directory_path() / L"a font.tmp";
  std::ofstream(font) << "font";
  EnsurePrinter(kPrinterName, 600, {});
  {
    const SpoolJob spool(kPrinterName, L"A document");
    ClientProcess client(test::BuiltFile(L"quillo-print.exe"), folder, {}, ClientFault::kNone);
    client.Serve(spool.Id());
    CQloPrinter* job = OpenJob(spool.Printer(), spool.Id());
    ASSERT_NE(job, nullptr);
    const Bstr path(SysAllocString(font.c_str()));
    EXPECT_EQ(job->client->NotifyEmbeddedFont(path.Get()), S_OK);
    const Bstr printer(SysAllocString(kPrinterName));
    EXPECT_EQ(job->client->NotifyError(printer.Get(), 7, -295), S_OK);
    SignalEndAndDestroy(job);
    const nlohmann::ordered_json calls = client.Finish().calls;
    EXPECT_EQ(calls[1]["method"], "NotifyEmbeddedFont");
    EXPECT_EQ(calls[1]["file"], "a font.tmp");
    EXPECT_EQ(calls[2]["method"], "NotifyError");
    EXPECT_EQ(calls[2]["job"], 7);
    EXPECT_EQ(calls[2]["code"], -295);
  }
  EXPECT_EQ(fs::file_size(folder / L"a font.tmp"), 4u);
  fs::remove(font);
  fs::remove_all(folder);
}

}  // namespace
}  // namespace quillo::host
