#include "base/windows.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <nlohmann/json.hpp>

#include "config/user_paths.h"
#include "host/client/client_process.h"
#include "host/printer/printer_setup.h"
#include "host/printer/sheet.h"
#include "host/printer/spool_job.h"
#include "job/job.h"

// The driver's job object in this process, a client in another one.
namespace quillo::host {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

fs::path ProgramFolder() {
  wchar_t program[MAX_PATH];
  GetModuleFileNameW(nullptr, program, MAX_PATH);
  return fs::path(program).parent_path();
}

fs::path UserTemp() {
  wchar_t folder[MAX_PATH];
  return UserTempFolder(folder, MAX_PATH) != 0 ? fs::path(folder) : fs::path();
}

std::vector<std::string> Methods(const Json& calls) {
  std::vector<std::string> names;
  for (const Json& call : calls) names.push_back(call["method"]);
  return names;
}

class ClientOfAJob : public testing::Test {
 protected:
  ClientOfAJob() {
    EnsurePrinter(kPrinterName, 600, {});
    fs::remove_all(folder_);
    fs::create_directories(folder_);
  }
  ~ClientOfAJob() override { fs::remove_all(folder_); }

  /// Prints empty pages; true when every step of the driver succeeded.
  bool Print(int pages, ClientFault fault) {
    const SpoolJob spool(kPrinterName, L"A document");
    job_id_ = spool.Id();
    std::optional<ClientProcess> client;
    if (fault != ClientFault::kLate) Start(client, fault);
    CQloPrinter* job = OpenJob(spool.Printer(), spool.Id());
    if (job == nullptr) return false;
    if (fault == ClientFault::kLate) Start(client, fault);
    const DeviceMode mode = MakeDeviceMode(kPrinterName, Sheet{.paper = DMPAPER_A4}, 600);
    const uint32_t header[] = {0x10010003, sizeof mode};
    WriteJob(job, header, sizeof header, nullptr);
    WriteJob(job, &mode, sizeof mode, nullptr);
    bool done = true;
    for (int page = 0; page < pages; ++page) {
      done = StartPage(job) && done;
      done = SendPage(job) && done;
    }
    EndDocument(job);
    SignalEndAndDestroy(job);
    report_ = client->Finish();
    return done;
  }

  void Start(std::optional<ClientProcess>& client, ClientFault fault) {
    client.emplace(ProgramFolder().parent_path() / L"bin" / L"quillo-print.exe", job_id_, folder_,
                   fault);
  }

  void ExpectNothingLeftInTemp() {
    const std::wstring id = std::to_wstring(job_id_);
    EXPECT_FALSE(fs::exists(UserTemp() / (id + L".stg")));
    EXPECT_FALSE(fs::exists(UserTemp() / (id + L".fpt")));
  }

  const fs::path folder_ = fs::temp_directory_path() / L"quillo client test";
  DWORD job_id_ = 0;
  ClientReport report_;
};

TEST_F(ClientOfAJob, ThreePages_AreCopiedAndCallsComeInOrder) {
  ASSERT_TRUE(Print(3, ClientFault::kNone));

  const std::vector<std::string> page{"GetPageObject", "NotifyPageStart", "NotifyPage"};
  std::vector<std::string> expected{"NotifyJobStart"};
  for (int i = 0; i < 3; ++i) expected.insert(expected.end(), page.begin(), page.end());
  expected.insert(expected.end(), {"NotifyFontsFile", "NotifyDocumentEnd", "NotifyJobEnd"});
  EXPECT_EQ(Methods(report_.calls), expected);
  EXPECT_TRUE(report_.job_end_event);
  EXPECT_TRUE(report_.survived);

  EXPECT_EQ(report_.calls[0]["printer"], "VORNIX Quillo 6");
  EXPECT_EQ(report_.calls[0]["job"], job_id_);
  EXPECT_EQ(report_.calls[0]["document"], "A document");
  const Json& delivery = report_.calls[6];
  EXPECT_EQ(delivery["page"], 2);
  EXPECT_EQ(delivery["file"], "page-0002.emf");
  const Json& described = delivery["page_object"];
  EXPECT_EQ(described["kind"], 1);
  EXPECT_EQ(described["width"], 2100.0);
  EXPECT_EQ(described["height"], 2970.0);
  EXPECT_EQ(described["mode"], 3);
  EXPECT_EQ(described["x_dpi"], 600);
  EXPECT_EQ(described["y_dpi"], 600);
  EXPECT_EQ(report_.calls[10]["fonts"], Json::array());
  for (const wchar_t* name : {L"page-0001.emf", L"page-0002.emf", L"page-0003.emf"}) {
    EXPECT_GT(fs::file_size(folder_ / name), sizeof(ENHMETAHEADER)) << name;
  }
  ExpectNothingLeftInTemp();
}

TEST_F(ClientOfAJob, RareCalls_ReachTheClient) {
  const fs::path font = fs::temp_directory_path() / L"a font.tmp";
  std::ofstream(font) << "font";
  {
    const SpoolJob spool(kPrinterName, L"A document");
    ClientProcess client(ProgramFolder().parent_path() / L"bin" / L"quillo-print.exe", spool.Id(),
                         folder_, ClientFault::kNone);
    CQloPrinter* job = OpenJob(spool.Printer(), spool.Id());
    ASSERT_NE(job, nullptr);
    const Bstr path(SysAllocString(font.c_str()));
    EXPECT_EQ(job->client->NotifyEmbeddedFont(path.Get()), S_OK);
    const Bstr printer(SysAllocString(kPrinterName));
    EXPECT_EQ(job->client->NotifyError(printer.Get(), 7, kPageError), S_OK);
    SignalEndAndDestroy(job);
    const Json calls = client.Finish().calls;
    EXPECT_EQ(calls[1]["method"], "NotifyEmbeddedFont");
    EXPECT_EQ(calls[1]["file"], "a font.tmp");
    EXPECT_EQ(calls[2]["method"], "NotifyError");
    EXPECT_EQ(calls[2]["job"], 7);
    EXPECT_EQ(calls[2]["code"], -295);
  }
  EXPECT_EQ(fs::file_size(folder_ / L"a font.tmp"), 4u);
  fs::remove(font);
}

struct FaultCase {
  ClientFault fault;
  bool pages_succeed;
  std::map<std::string, int> calls;  // how often the client heard each method, for two pages
  bool survives = true;
};

class FaultyClient : public ClientOfAJob, public testing::WithParamInterface<FaultCase> {};

// Whatever the client does, the job goes on and leaves nothing behind.
TEST_P(FaultyClient, Job_GoesOn) {
  EXPECT_EQ(Print(2, GetParam().fault), GetParam().pages_succeed);
  std::map<std::string, int> heard;
  for (const std::string& method : Methods(report_.calls)) ++heard[method];
  EXPECT_EQ(heard, GetParam().calls);
  EXPECT_EQ(report_.survived, GetParam().survives);
  EXPECT_EQ(report_.job_end_event, GetParam().survives);
  ExpectNothingLeftInTemp();
}

const std::map<std::string, int> kAllCalls = {
    {"NotifyJobStart", 1},  {"GetPageObject", 2},     {"NotifyPageStart", 2}, {"NotifyPage", 2},
    {"NotifyFontsFile", 1}, {"NotifyDocumentEnd", 1}, {"NotifyJobEnd", 1}};

INSTANTIATE_TEST_SUITE_P(
    Faults, FaultyClient,
    testing::Values(FaultCase{ClientFault::kLate, true, kAllCalls},
                    FaultCase{ClientFault::kHanging, true, kAllCalls},
                    FaultCase{ClientFault::kWithoutTextRuns, true, kAllCalls},
                    FaultCase{ClientFault::kFailing,
                              true,
                              {{"NotifyJobStart", 1},
                               {"GetPageObject", 2},
                               {"NotifyPage", 2},
                               {"NotifyFontsFile", 1},
                               {"NotifyDocumentEnd", 1},
                               {"NotifyJobEnd", 1}}},
                    FaultCase{ClientFault::kDying,
                              true,
                              {{"NotifyJobStart", 1}, {"GetPageObject", 1}, {"NotifyPageStart", 1}},
                              false}),
    [](const auto& test) {
      std::string name(NameOf(test.param.fault));
      std::erase(name, '-');
      return name;
    });

}  // namespace
}  // namespace quillo::host
