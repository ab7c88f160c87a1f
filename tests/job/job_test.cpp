#include "job/job.h"

#include <gtest/gtest.h>
#include <optional>

#include "base/system_owners.h"
#include "capture/records/types.h"
#include "host/printer/printer_setup.h"
#include "host/printer/sheet.h"
#include "host/printer/spool_job.h"
#include "job/document_end.h"
#include "job/record_sink.h"
#include "support/import_patch.h"
#include "support/margins.h"
#include "support/recording_client.h"

namespace quillo {
namespace {

using test::Line;
using test::RecordingClient;

bool Exists(const std::wstring& path) {
  return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

/// Files in the TEMP folder that pages and jobs make.
int LeftFiles() {
  int count = 0;
  for (const wchar_t* pattern : {L"\\VXP*.tmp", L"\\*.fpt", L"\\*.stg"}) {
    WIN32_FIND_DATAW found;
    const HANDLE search = FindFirstFileW((test::TempFolder() + pattern).c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) continue;
    do {
      ++count;
    } while (FindNextFileW(search, &found));
    FindClose(search);
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
    files_before_ = LeftFiles();
    heaps_before_ = GetProcessHeaps(0, nullptr);
  }
  void TearDown() override {
    EXPECT_EQ(LeftFiles(), files_before_);
    EXPECT_EQ(GetProcessHeaps(0, nullptr), heaps_before_);
    EXPECT_EQ(client_.LivingPages(), 0);
    CoUninitialize();
    // No job is left in the apartment: another kind may be entered.
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
    CoUninitialize();
  }

  CQloPrinter* Open() {
    CQloPrinter* job = OpenJob(spool_job_->Printer(), spool_job_->Id());
    EXPECT_NE(job, nullptr);
    const host::Sheet sheet{.paper = DMPAPER_A4};
    const DeviceMode mode = host::MakeDeviceMode(host::kPrinterName, sheet, kDpi);
    Send(job, records::REC_DEVMODE, &mode, sizeof mode);
    return job;
  }

  static void Send(CQloPrinter* job, uint32_t type, const void* payload = nullptr,
                   uint32_t size = 0) {
    const uint32_t header[] = {type, size};
    WriteJob(job, header, sizeof header, nullptr);
    WriteJob(job, payload, size, nullptr);
  }

  void Close(CQloPrinter* job) {
    EndDocument(job);
    SignalEndAndDestroy(job);
  }

  std::string Named(const char* call) { return Line(call, " VORNIX Quillo 6/", spool_job_->Id()); }

  std::vector<std::string> PageCalls(int page) {
    return {"GetPageObject",
            Named("NotifyPageStart") + Line(" page ", page),
            "  file kind 1",
            "  x dpi 300",
            "  y dpi 300",
            "  width 2100",
            "  height 2970",
            "  mode 3",
            Named("NotifyPage") + Line(" page ", page)};
  }

  RecordingClient client_;
  std::optional<host::SpoolJob> spool_job_;
  int files_before_ = 0;
  DWORD heaps_before_ = 0;
};

TEST_F(Job, ClientConnected_HearsEveryStepInOrder) {
  for (const int pages : {0, 1, 3}) {
    SCOPED_TRACE(pages);
    client_.LeaveConnection(spool_job_->Id());
    RecordingClient& client = client_;
    client.calls.clear();
    // A new page object counts on from the last job's.
    static int page_number = 0;

    CQloPrinter* job = Open();
    EXPECT_FALSE(Exists(test::ConnectionPath(spool_job_->Id())));
    std::vector<std::string> expected = {Named("NotifyJobStart") + " A document"};
    for (int page = 0; page < pages; ++page) {
      EXPECT_TRUE(StartPage(job));
      EXPECT_TRUE(SendPage(job));
      const auto calls = PageCalls(++page_number);
      expected.insert(expected.end(), calls.begin(), calls.end());
    }
    Close(job);
    expected.push_back(Named("NotifyFontsFile") + " 0");
    expected.push_back(Named("NotifyDocumentEnd"));
    expected.push_back(Named("NotifyJobEnd"));
    EXPECT_EQ(client.calls, expected);
  }
}

const DEVMODEW* reference_settings = nullptr;
HDC WINAPI WatchCreateDc(LPCWSTR, LPCWSTR printer, LPCWSTR, const DEVMODEW* settings) {
  EXPECT_EQ(std::wstring(printer), host::kPrinterName);
  reference_settings = settings;
  return nullptr;
}

TEST_F(Job, PageFile_StandsDuringNotifyPageOnly) {
  const test::ImportPatch watch("CreateDCW", WatchCreateDc);
  client_.LeaveConnection(spool_job_->Id());
  std::wstring page_file;
  ENHMETAHEADER header = {};
  client_.on_page_file = [&](const wchar_t* path) {
    page_file = path;
    const HENHMETAFILE metafile = GetEnhMetaFileW(path);
    EXPECT_NE(GetEnhMetaFileHeader(metafile, sizeof header, &header), 0u);
    DeleteEnhMetaFile(metafile);
  };
  CQloPrinter* job = Open();
  test::SetMargins(*job->device_settings, 0.5f, 0.25f);
  ASSERT_TRUE(StartPage(job));
  EXPECT_EQ(reference_settings, &job->device_settings->pub);
  POINT origin = {};
  GetViewportOrgEx(job->playback.page_dc, &origin);
  EXPECT_EQ(origin.x, 150);
  EXPECT_EQ(origin.y, 75);
  const records::Rect rectangle = {10, 20, 110, 220};
  Send(job, records::REC_RECTANGLE, &rectangle, sizeof rectangle);
  EXPECT_TRUE(SendPage(job));
  Close(job);

  EXPECT_EQ(page_file.find(test::TempFolder() + L"\\VXP"), 0u);
  EXPECT_FALSE(Exists(page_file));
  EXPECT_EQ(header.rclFrame.right, 21000);
  EXPECT_EQ(header.rclFrame.bottom, 29700);
  EXPECT_GT(header.nRecords, 2u);
  EXPECT_EQ(header.nDescription, 21u);
}

std::wstring made_folder;
BOOL WINAPI WatchCreateDirectory(LPCWSTR path, SECURITY_ATTRIBUTES*) {
  made_folder = path;
  return TRUE;
}

TEST_F(Job, FontsFile_ReadableDuringTheCallAndGoneAfter) {
  const test::ImportPatch watch("CreateDirectoryW", WatchCreateDirectory);
  client_.LeaveConnection(spool_job_->Id());
  std::wstring fonts_file;
  LOGFONTW fonts[3] = {};
  ULONG fonts_size = 0;
  client_.on_fonts_file = [&](const wchar_t* path) {
    fonts_file = path;
    ComPtr<IStorage> storage;
    ASSERT_EQ(StgOpenStorage(path, nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE, nullptr, 0,
                             storage.Receive()),
              S_OK);
    ComPtr<IStream> stream;
    ASSERT_EQ(storage->OpenStream(L"FONTS OPTIONS", nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE, 0,
                                  stream.Receive()),
              S_OK);
    stream->Read(fonts, sizeof fonts, &fonts_size);
  };
  CQloPrinter* job = Open();
  EXPECT_EQ(made_folder, test::TempFolder() + L"\\QLOFNT500");
  EXPECT_EQ(job->font_folder, made_folder);
  for (const LONG height : {-10, -20, -10}) {
    LOGFONTW font = {};
    font.lfHeight = height;
    lstrcpyW(font.lfFaceName, height == -20 ? L"Liberation Sans" : L"Liberation Mono");
    Send(job, records::REC_CREATEFONT, &font, sizeof font);
  }
  Close(job);
  EXPECT_EQ(fonts_file, test::TempFolder() + L"\\" + std::to_wstring(spool_job_->Id()) + L".fpt");
  EXPECT_FALSE(Exists(fonts_file));
  EXPECT_EQ(fonts_size, 2 * sizeof(LOGFONTW));
  EXPECT_STREQ(fonts[0].lfFaceName, L"Liberation Mono");
  EXPECT_STREQ(fonts[1].lfFaceName, L"Liberation Sans");
}

TEST_F(Job, NoClient_FirstPageRefusedThenUnconnected) {
  CQloPrinter* job = Open();
  EXPECT_FALSE(StartPage(job));
  EXPECT_TRUE(StartPage(job));
  EXPECT_TRUE(SendPage(job));
  EXPECT_EQ(job->pages_started, 1u);
  Close(job);
  EXPECT_TRUE(client_.calls.empty());
}

TEST_F(Job, ClientAppearsAtAPage_ConnectedFromThere) {
  CQloPrinter* job = Open();
  client_.LeaveConnection(spool_job_->Id(), true);
  EXPECT_TRUE(StartPage(job));
  EXPECT_FALSE(Exists(test::ConnectionPath(spool_job_->Id(), true)));
  EXPECT_TRUE(SendPage(job));
  Close(job);
  ASSERT_FALSE(client_.calls.empty());
  EXPECT_EQ(client_.calls.front(), Named("NotifyJobStart") + " A document");
  EXPECT_EQ(client_.calls.back(), Named("NotifyJobEnd"));
}

TEST_F(Job, ClientFailsEveryCall_PagesGoOn) {
  client_.LeaveConnection(spool_job_->Id());
  client_.answer = E_FAIL;
  CQloPrinter* job = Open();
  for (int page = 0; page < 2; ++page) {
    EXPECT_TRUE(StartPage(job));
    EXPECT_TRUE(SendPage(job));
  }
  Close(job);
  const std::vector<std::string> expected = {Named("NotifyJobStart") + " A document",
                                             "GetPageObject",
                                             Named("NotifyPage") + " no page",
                                             "GetPageObject",
                                             Named("NotifyPage") + " no page",
                                             Named("NotifyFontsFile") + " 0",
                                             Named("NotifyDocumentEnd"),
                                             Named("NotifyJobEnd")};
  EXPECT_EQ(client_.calls, expected);
}

TEST_F(Job, ConnectionFileOfRubbish_DeletedAndUnconnected) {
  const std::wstring path = test::ConnectionPath(spool_job_->Id());
  {
    const KernelHandle file(
        CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
  }
  CQloPrinter* job = Open();
  EXPECT_FALSE(Exists(path));
  EXPECT_NE(job->state & kClientNotConnected, 0u);
  Close(job);
}

int message_boxes = 0;
UINT message_box_style = 0;
std::wstring message_box_caption;

int WINAPI CountMessageBox(HWND, LPCWSTR, LPCWSTR caption, UINT style) {
  ++message_boxes;
  message_box_caption = caption;
  message_box_style = style;
  return IDOK;
}

int destroyed_arrays = 0;

HRESULT WINAPI CountSafeArrayDestroy(SAFEARRAY* array) {
  ++destroyed_arrays;
  SafeArrayDestroyData(array);
  return SafeArrayDestroyDescriptor(array);
}

TEST_F(Job, TextRuns_HandedOverByNameAndEmptied) {
  const test::ImportPatch watch("MessageBoxW", CountMessageBox);
  const test::ImportPatch count("SafeArrayDestroy", CountSafeArrayDestroy);
  const struct {
    bool known;
    HRESULT answer;
    int boxes;
  } cases[] = {{false, S_OK, 0}, {true, S_OK, 0}, {true, E_FAIL, 1}};
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.known << ", " << c.answer);
    message_boxes = destroyed_arrays = 0;
    client_.text_runs.clear();
    client_.has_text_runs = c.known;
    client_.text_runs_answer = c.answer;
    client_.LeaveConnection(spool_job_->Id());
    CQloPrinter* job = Open();
    for (int page = 0; page < 2; ++page) {
      ASSERT_TRUE(StartPage(job));
      for (uint32_t glyphs = 1; page == 0 && glyphs <= 3; ++glyphs) {
        records::TextRunPayload run = {};
        run.glyph_count = glyphs * 10;
        Send(job, records::REC_TEXTRUN, &run, sizeof run);
      }
      EXPECT_TRUE(SendPage(job));
    }
    Close(job);
    const std::vector<std::vector<int>> expected = {{10, 20, 30}, {}};
    EXPECT_EQ(client_.text_runs, c.known ? expected : std::vector<std::vector<int>>());
    EXPECT_EQ(destroyed_arrays, c.known ? 2 : 0);
    EXPECT_EQ(message_boxes, c.boxes * 2);
    if (c.boxes > 0) {
      EXPECT_EQ(message_box_caption, L"Error");
      EXPECT_EQ(message_box_style, static_cast<UINT>(MB_SETFOREGROUND));
    }
  }
}

UINT WINAPI NoTempFile(LPCWSTR, LPCWSTR, UINT, LPWSTR) { return 0; }
HDC WINAPI NoMetafile(HDC, LPCWSTR, const RECT*, LPCWSTR) { return nullptr; }
HENHMETAFILE WINAPI FailClosing(HDC dc) {
  // What was selected is released while the metafile still records.
  EXPECT_EQ(GetCurrentObject(dc, OBJ_PEN), GetStockObject(BLACK_PEN));
  static const auto close = reinterpret_cast<decltype(&CloseEnhMetaFile)>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"gdi32"), "CloseEnhMetaFile")));
  DeleteEnhMetaFile(close(dc));
  return nullptr;
}

TEST_F(Job, PageCannotBeMadeOrClosed_JobFailsAndLeavesNoFile) {
  const struct {
    test::ImportPatch (*fail)();
    bool begun;
  } cases[] = {
      {[] { return test::ImportPatch("GetTempFileNameW", NoTempFile); }, false},
      {[] { return test::ImportPatch("CreateEnhMetaFileW", NoMetafile); }, false},
      {[] { return test::ImportPatch("CloseEnhMetaFile", FailClosing); }, true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(&c - cases);
    client_.LeaveConnection(spool_job_->Id());
    CQloPrinter* job = Open();
    {
      const test::ImportPatch failure = c.fail();
      EXPECT_EQ(StartPage(job), c.begun);
      const records::CreatePenPayload pen = {PS_SOLID, 3, 0, 0x123456};
      if (c.begun) Send(job, records::REC_CREATEPEN, &pen, sizeof pen);
      EXPECT_FALSE(c.begun && SendPage(job));
    }
    EXPECT_NE(job->state & kJobFailed, 0u);
    EXPECT_EQ(client_.calls.back(), Named("NotifyError") + " -295");
    EXPECT_EQ(LeftFiles(), files_before_);
    const size_t calls = client_.calls.size();
    EXPECT_FALSE(StartPage(job));
    EXPECT_EQ(client_.calls.size(), calls);
    Close(job);
  }
}

TEST_F(Job, PrinterGone_PageMadeAllTheSame) {
  client_.LeaveConnection(spool_job_->Id());
  CQloPrinter* job = Open();
  job->printer = nullptr;
  EXPECT_TRUE(StartPage(job));
  EXPECT_TRUE(SendPage(job));
  EXPECT_EQ(client_.calls.back().find(Named("NotifyPage")), 0u);
  Close(job);
}

TEST_F(Job, PagesNeverSent_ClosedAndDroppedByTheNextAndAtTheEnd) {
  client_.LeaveConnection(spool_job_->Id());
  CQloPrinter* job = Open();
  ASSERT_TRUE(StartPage(job));
  ASSERT_TRUE(StartPage(job));
  Close(job);
  for (const std::string& call : client_.calls)
    EXPECT_EQ(call.find("NotifyPage "), std::string::npos);
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
  const records::Point next = {56, 78};
  Send(job, records::REC_ESCAPEMARK);
  Send(job, records::REC_PAGEVALUE, &next, sizeof next);
  EXPECT_EQ(job->playback.page_value.x, 56);
  Close(job);
}

void* WINAPI NoGrowth(HANDLE, DWORD, void*, SIZE_T) { return nullptr; }

TEST_F(Job, RecordTooLongForMemory_LosesNoOther) {
  CQloPrinter* job = Open();
  const std::vector<std::byte> piece(5000);
  const uint32_t header[] = {records::REC_STRETCHBLT, 10000};
  for (const bool rest_comes : {true, false}) {
    WriteJob(job, header, sizeof header, nullptr);
    {
      const test::ImportPatch no_memory("HeapReAlloc", NoGrowth);
      WriteJob(job, piece.data(), 5000, nullptr);
    }
    if (rest_comes) {
      WriteJob(job, piece.data(), 5000, nullptr);
    } else {
      SendPage(job);
    }
    const records::Point offset = {12, rest_comes ? 34 : 56};
    Send(job, records::REC_PAGEVALUE, &offset, sizeof offset);
    EXPECT_EQ(job->playback.page_value.y, offset.y);
  }
  Close(job);
}

TEST_F(Job, End_SignalsTheEventAWaiterHolds) {
  const std::wstring name =
      L"Global\\VORNIXQUILLO5_JOB_END" + std::to_wstring(spool_job_->Id()) + L" version5";
  const KernelHandle waiter(CreateEventW(nullptr, TRUE, FALSE, name.c_str()));
  const auto signalled = [&waiter] {
    return WaitForSingleObject(waiter.Get(), 0) == WAIT_OBJECT_0;
  };
  client_.LeaveConnection(spool_job_->Id());
  bool ended = false;
  client_.on_job_end = [&] { ended = signalled(); };  // before the client hears of the end
  CQloPrinter* job = Open();
  EndDocument(job);
  EXPECT_FALSE(signalled());
  SignalEndAndDestroy(job);
  EXPECT_TRUE(ended);
}

}  // namespace
}  // namespace quillo
