#include "job/job.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <optional>

#include "base/system_owners.h"
#include "capture/records/types.h"
#include "host/printer/printer_setup.h"
#include "host/printer/sheet.h"
#include "host/printer/spool_job.h"
#include "job/document_end.h"
#include "job/record_sink.h"
#include "support/line.h"
#include "support/margins.h"
#include "support/recording_client.h"
#include "support/watch.h"

namespace quillo {
namespace {

using Json = nlohmann::ordered_json;
using test::Line;

bool Exists(const std::filesystem::path& path) { return std::filesystem::exists(path); }
std::filesystem::path PathOf(const Json& call) { return call["path"].get<std::string>(); }

/// Files in the TEMP folder that pages and jobs make.
int LeftFiles() {
  int count = 0;
  for (const auto& entry : std::filesystem::directory_iterator(test::TempFolder())) {
    const std::wstring name = entry.path().filename();
    count += (name.starts_with(L"VXP") && name.ends_with(L".tmp")) || name.ends_with(L".fpt") ||
             name.ends_with(L".stg");
  }
  return count;
}

class Job : public testing::Test {
 protected:
  static constexpr int kDpi = 300;

  void SetUp() override {
    // The client lives in this apartment, as it would in a process of its own.
    ASSERT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, COINIT_MULTITHREADED)));
    host::EnsurePrinter(host::kPrinterName, kDpi, {});
    spool_job_.emplace(host::kPrinterName, L"A document");
    // What a run that broke off left would be taken for this job's client.
    for (const bool in_session_folder : {false, true}) {
      DeleteFileW(test::ConnectionPath(spool_job_->Id(), in_session_folder).c_str());
    }
    files_before_ = LeftFiles();
    heaps_before_ = GetProcessHeaps(0, nullptr);
  }
  void TearDown() override {
    EXPECT_EQ(LeftFiles(), files_before_);
    EXPECT_EQ(GetProcessHeaps(0, nullptr), heaps_before_);
    EXPECT_EQ(client_.CountLeaks(), 0);
    CoUninitialize();
    // No job is left in the apartment: another kind may be entered.
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
    CoUninitialize();
  }

  void Connect(host::ClientFault fault = host::ClientFault::kNone) {
    client_.LeaveConnection(spool_job_->Id(), false, fault);
    client_.calls.clear();
  }

  CQloPrinter* Open() {
    CQloPrinter* job = OpenJob(spool_job_->Printer(), spool_job_->Id());
    EXPECT_NE(job, nullptr);
    const DeviceMode mode = host::MakeDeviceMode(host::kPrinterName, {.paper = DMPAPER_A4}, kDpi);
    Send(job, records::REC_DEVMODE, &mode, sizeof mode);
    return job;
  }

  static void Send(CQloPrinter* job, uint32_t type, const void* payload = nullptr,
                   uint32_t size = 0) {
    const uint32_t header[] = {type, size};
    WriteJob(job, header, sizeof header, nullptr);
    WriteJob(job, payload, size, nullptr);
  }
  static void SendPageValue(CQloPrinter* job, records::Point offset) {
    Send(job, records::REC_PAGEVALUE, &offset, sizeof offset);
  }

  static void Close(CQloPrinter* job) {
    EndDocument(job);
    SignalEndAndDestroy(job);
  }

  std::string Call(const char* method, const std::string& rest = {}) {
    return Line(method, " VORNIX Quillo 6 ", spool_job_->Id(), rest);
  }

  test::RecordingClient client_;
  std::optional<host::SpoolJob> spool_job_;
  int files_before_ = 0;
  DWORD heaps_before_ = 0;
};

TEST_F(Job, ClientConnected_HearsEveryStepInOrder) {
  for (const int pages : {0, 1, 3}) {
    SCOPED_TRACE(pages);
    Connect();
    CQloPrinter* job = Open();
    EXPECT_FALSE(Exists(test::ConnectionPath(spool_job_->Id())));
    std::vector<std::string> expected = {Call("NotifyJobStart", " A document")};
    for (int page = 1; page <= pages; ++page) {
      EXPECT_TRUE(StartPage(job));
      EXPECT_TRUE(SendPage(job));
      expected.push_back(Line("GetPageObject ", page));
      expected.push_back(Call("NotifyPageStart", Line(' ', page)));
      expected.push_back(Call("NotifyPage", Line(' ', page, " 1 2100.0 2970.0 3 300 300 []")));
    }
    Close(job);
    expected.push_back(Call("NotifyFontsFile", " 0 []"));
    expected.push_back(Call("NotifyDocumentEnd"));
    expected.push_back(Call("NotifyJobEnd"));
    EXPECT_EQ(client_.calls, expected);
  }
}

TEST_F(Job, PageFile_ExistsDuringNotifyPageOnly) {
  const DEVMODEW* reference = nullptr;
  const WATCH(CreateDCW) watch([&](auto, LPCWSTR printer, auto, const DEVMODEW* settings) -> HDC {
    EXPECT_EQ(std::wstring(printer), host::kPrinterName);
    reference = settings;
    return nullptr;  // the page is made nonetheless
  });
  Connect();
  std::filesystem::path page_file;
  ENHMETAHEADER header = {};
  client_.on_call = [&](const Json& call) {
    if (call["method"] != "NotifyPage") return;
    page_file = PathOf(call["page_object"]);
    const HENHMETAFILE metafile = GetEnhMetaFileW(page_file.c_str());
    EXPECT_NE(GetEnhMetaFileHeader(metafile, sizeof header, &header), 0u);
    DeleteEnhMetaFile(metafile);
  };
  CQloPrinter* job = Open();
  test::SetMargins(*job->device_settings, 0.5f, 0.25f);
  ASSERT_TRUE(StartPage(job));
  EXPECT_EQ(reference, &job->device_settings->pub);
  POINT origin = {};
  GetViewportOrgEx(job->playback.page_dc, &origin);
  EXPECT_EQ(origin.x, 150);
  EXPECT_EQ(origin.y, 75);
  const records::Rect rectangle = {10, 20, 110, 220};
  Send(job, records::REC_RECTANGLE, &rectangle, sizeof rectangle);
  EXPECT_TRUE(SendPage(job));
  Close(job);

  EXPECT_TRUE(page_file.wstring().starts_with(test::TempFolder() + L"\\VXP"));
  EXPECT_FALSE(Exists(page_file));
  EXPECT_EQ(header.rclFrame.right, 21000);
  EXPECT_EQ(header.rclFrame.bottom, 29700);
  EXPECT_GT(header.nRecords, 2u);
  EXPECT_EQ(header.nDescription, 21u);
}

TEST_F(Job, FontsFile_ReadDuringTheCallAndGoneAfter) {
  std::wstring folder;
  const WATCH(CreateDirectoryW)
      watch([&folder](LPCWSTR path, auto) { return folder = path, TRUE; });
  Connect();
  std::filesystem::path fonts_file;
  client_.on_call = [&](const Json& call) {
    if (call["method"] == "NotifyFontsFile") fonts_file = PathOf(call);
  };
  CQloPrinter* job = Open();
  EXPECT_EQ(folder, test::TempFolder() + L"\\QLOFNT500");
  EXPECT_EQ(job->font_folder, folder);
  for (const LONG height : {-10, -20, -10}) {
    LOGFONTW font = {};
    font.lfHeight = height;
    lstrcpyW(font.lfFaceName, height == -20 ? L"Liberation Sans" : L"Liberation Mono");
    Send(job, records::REC_CREATEFONT, &font, sizeof font);
  }
  client_.calls.clear();
  Close(job);
  EXPECT_EQ(fonts_file, test::TempFolder() + L"\\" + std::to_wstring(spool_job_->Id()) + L".fpt");
  EXPECT_FALSE(Exists(fonts_file));
  EXPECT_EQ(client_.calls.front(),
            Call("NotifyFontsFile",
                 R"( 0 [{"face":"Liberation Mono","height":0,"weight":0,"italic":false},)"
                 R"({"face":"Liberation Sans","height":0,"weight":0,"italic":false}])"));
}

TEST_F(Job, NoClient_FirstPageRefusedThenUnconnected) {
  // A connection file that cannot be read counts as none, and goes.
  const std::wstring path = test::ConnectionPath(spool_job_->Id());
  CloseHandle(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
  CQloPrinter* job = Open();
  EXPECT_FALSE(Exists(path));
  EXPECT_FALSE(StartPage(job));
  EXPECT_TRUE(StartPage(job));
  EXPECT_TRUE(SendPage(job));
  EXPECT_EQ(job->pages_started, 1u);
  Close(job);
  EXPECT_TRUE(client_.calls.empty());
}

TEST_F(Job, ClientAppearsAtAPage_ConnectedFromThere) {
  CQloPrinter* job = Open();
  client_.LeaveConnection(spool_job_->Id(), /*in_session_folder=*/true);
  EXPECT_TRUE(StartPage(job));
  EXPECT_FALSE(Exists(test::ConnectionPath(spool_job_->Id(), true)));
  EXPECT_TRUE(SendPage(job));
  Close(job);
  ASSERT_FALSE(client_.calls.empty());
  EXPECT_EQ(client_.calls.front(), Call("NotifyJobStart", " A document"));
  EXPECT_EQ(client_.calls.back(), Call("NotifyJobEnd"));
}

TEST_F(Job, ClientFailsEveryCall_PagesGoOn) {
  Connect(host::ClientFault::kFailing);
  CQloPrinter* job = Open();
  for (int page = 0; page < 2; ++page) {
    EXPECT_TRUE(StartPage(job));
    EXPECT_TRUE(SendPage(job));
  }
  Close(job);
  const std::vector<std::string> expected = {Call("NotifyJobStart", " A document"),
                                             "GetPageObject 1",
                                             Call("NotifyPage", " 0"),
                                             "GetPageObject 1",
                                             Call("NotifyPage", " 0"),
                                             Call("NotifyFontsFile", " 0 []"),
                                             Call("NotifyDocumentEnd"),
                                             Call("NotifyJobEnd")};
  EXPECT_EQ(client_.calls, expected);
}

TEST_F(Job, TextRuns_HandedOverByNameAndEmptied) {
  enum { kUnknown, kTaken, kRefused };
  for (const int property : {kUnknown, kTaken, kRefused}) {
    SCOPED_TRACE(property);
    WATCH(MessageBoxW)
    boxes([](auto, auto, LPCWSTR caption, UINT style) -> int {
      EXPECT_STREQ(caption, L"Error");
      EXPECT_EQ(style, static_cast<UINT>(MB_SETFOREGROUND));
      return IDOK;
    });
    WATCH(SafeArrayDestroy) arrays([&](SAFEARRAY* array) { return arrays.CallOriginal(array); });
    // The client's page objects take only arrays of one dimension.
    const WATCH(SafeArrayGetDim) dimensions(property == kRefused ? 2u : 1u);
    Connect(property == kUnknown ? host::ClientFault::kWithoutTextRuns : host::ClientFault::kNone);
    CQloPrinter* job = Open();
    for (int page = 0; page < 2; ++page) {
      ASSERT_TRUE(StartPage(job));
      for (uint32_t glyphs = 10; page == 0 && glyphs <= 30; glyphs += 10) {
        const records::TextRunPayload run = {
            .reference = {}, .zero_1 = {}, .glyph_count = glyphs, .zero_2 = {}};
        Send(job, records::REC_TEXTRUN, &run, sizeof run);
      }
      EXPECT_TRUE(SendPage(job));
      EXPECT_TRUE(
          client_.calls.back().ends_with(page == 0 && property == kTaken ? " [10,20,30]" : " []"));
    }
    Close(job);
    EXPECT_EQ(arrays.calls.size(), property == kUnknown ? 0u : 2u);
    EXPECT_EQ(boxes.calls.size(), property == kRefused ? 2u : 0u);
  }
}

TEST_F(Job, PageCannotBeMadeOrClosed_JobFailsAndLeavesNoFile) {
  for (const int failure : {0, 1, 2}) {
    SCOPED_TRACE(failure);
    const bool begun = failure == 2;
    Connect();
    CQloPrinter* job = Open();
    {
      std::optional<WATCH(GetTempFileNameW)> no_file;
      std::optional<WATCH(CreateEnhMetaFileW)> no_metafile;
      std::optional<WATCH(CloseEnhMetaFile)> no_closing;
      if (failure == 0) no_file.emplace(0u);
      if (failure == 1) no_metafile.emplace(nullptr);
      if (failure == 2) {
        no_closing.emplace([&](HDC dc) -> HENHMETAFILE {
          // What was selected is released while the metafile still records.
          EXPECT_EQ(GetCurrentObject(dc, OBJ_PEN), GetStockObject(BLACK_PEN));
          DeleteEnhMetaFile(no_closing->CallOriginal(dc));
          return nullptr;
        });
      }
      EXPECT_EQ(StartPage(job), begun);
      const records::CreatePenPayload pen = {PS_SOLID, 3, 0, 0x123456};
      if (begun) Send(job, records::REC_CREATEPEN, &pen, sizeof pen);
      EXPECT_FALSE(begun && SendPage(job));
    }
    EXPECT_NE(job->state & kJobFailed, 0u);
    EXPECT_EQ(client_.calls.back(), Call("NotifyError", " -295"));
    EXPECT_EQ(LeftFiles(), files_before_);
    const size_t calls = client_.calls.size();
    EXPECT_FALSE(StartPage(job));
    EXPECT_EQ(client_.calls.size(), calls);
    Close(job);
  }
}

TEST_F(Job, PagesNeverSent_ClosedAndDroppedByTheNextAndAtTheEnd) {
  Connect();
  CQloPrinter* job = Open();
  job->printer = nullptr;  // the display takes its place
  ASSERT_TRUE(StartPage(job));
  ASSERT_TRUE(StartPage(job));
  Close(job);
  for (const std::string& call : client_.calls) EXPECT_FALSE(call.starts_with("NotifyPage "));
}

TEST_F(Job, PiecesOfARecord_PlayedOnceWhole) {
  CQloPrinter* job = Open();
  const uint32_t header[] = {records::REC_PAGEVALUE, 8};
  const records::Point offset = {12, 34};
  WriteJob(job, header, sizeof header, nullptr);
  WriteJob(job, &offset, 4, nullptr);
  EXPECT_EQ(job->playback.page_value.x, 0);
  uint32_t written = 0;
  EXPECT_EQ(WriteJob(job, &offset.y, 4, &written), 1);
  EXPECT_EQ(written, 4u);
  EXPECT_EQ(job->playback.page_value.x, 12);
  EXPECT_EQ(job->playback.page_value.y, 34);
  EXPECT_TRUE(job->record_buffer.Unread().empty());

  // A record cut off by the end of its page is dropped; the next page's are not taken for its rest.
  WriteJob(job, header, sizeof header, nullptr);
  SendPage(job);
  Send(job, records::REC_ESCAPEMARK);
  SendPageValue(job, {56, 78});
  EXPECT_EQ(job->playback.page_value.x, 56);
  Close(job);
}

TEST_F(Job, RecordTooLongForMemory_LosesNoOther) {
  CQloPrinter* job = Open();
  const std::vector<std::byte> piece(5000);
  const uint32_t header[] = {records::REC_STRETCHBLT, 10000};
  for (const bool rest_comes : {true, false}) {
    WriteJob(job, header, sizeof header, nullptr);
    {
      const WATCH(HeapReAlloc) no_memory(nullptr);
      WriteJob(job, piece.data(), 5000, nullptr);
    }
    if (rest_comes) {
      WriteJob(job, piece.data(), 5000, nullptr);
    } else {
      SendPage(job);
    }
    SendPageValue(job, {12, rest_comes ? 34 : 56});
    EXPECT_EQ(job->playback.page_value.y, rest_comes ? 34 : 56);
  }
  Close(job);
}

TEST_F(Job, End_SignalsTheEventAWaiterHolds) {
  const std::wstring name =
      L"Global\\VORNIXQUILLO5_JOB_END" + std::to_wstring(spool_job_->Id()) + L" version5";
  const KernelHandle waiter(CreateEventW(nullptr, TRUE, FALSE, name.c_str()));
  Connect();
  std::map<std::string, bool> signalled;  // during the calls
  client_.on_call = [&](const Json& call) {
    signalled[call["method"]] = WaitForSingleObject(waiter.Get(), 0) == WAIT_OBJECT_0;
  };
  Close(Open());
  EXPECT_FALSE(signalled["NotifyDocumentEnd"]);
  EXPECT_TRUE(signalled["NotifyJobEnd"]);
}

}  // namespace
}  // namespace quillo
