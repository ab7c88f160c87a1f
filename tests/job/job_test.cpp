#include "job/job.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <optional>
#include <sstream>

#include "base/system_owners.h"
#include "capture/records/types.h"
#include "host/printer/printer_setup.h"
#include "job/record_sink.h"
#include "job/spooled_job.h"
#include "support/line.h"
#include "support/margins.h"
#include "support/script.h"
#include "support/watch.h"

namespace quillo {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;
using test::Line;

/// A number, or the name of a record for its type.
uint32_t WordOf(const std::string& token) {
  for (const records::RecordInfo& info : records::kRecordInfos) {
    if ("REC_" + token == info.name) return info.type;
  }
  return static_cast<uint32_t>(std::stoul(token, nullptr, 0));
}

/// A system function that fails for as long as it is held.
std::shared_ptr<void> Failing(const std::string& function) {
  if (function == "GetTempFileNameW") return std::make_shared<WATCH(GetTempFileNameW)>(0u);
  if (function == "CreateEnhMetaFileW") {
    return std::make_shared<WATCH(CreateEnhMetaFileW)>(
        [](auto...) { return SetLastError(ERROR_DISK_FULL), HDC{}; });
  }
  if (function == "StgCreateDocfile") {
    return std::make_shared<WATCH(StgCreateDocfile)>(STG_E_ACCESSDENIED);
  }
  if (function == "StgOpenStorage") {  // once
    auto opening = std::make_shared<std::optional<WATCH(StgOpenStorage)>>();
    opening->emplace([original = opening.get()](auto... arguments) -> HRESULT {
      return (*original)->calls.size() == 1 ? STG_E_SHAREVIOLATION
                                            : (*original)->CallOriginal(arguments...);
    });
    return opening;
  }
  if (function == "HeapReAlloc") return std::make_shared<WATCH(HeapReAlloc)>(nullptr);
  // The client's page objects take only arrays of one dimension.
  if (function == "SafeArrayGetDim") return std::make_shared<WATCH(SafeArrayGetDim)>(2u);
  if (function == "GetJobW") {
    auto reading = std::make_shared<std::optional<WATCH(GetJobW)>>();
    reading->emplace([original = reading.get(), grown = false](auto printer, auto id, auto level,
                                                               auto job, auto size,
                                                               auto needed) mutable -> BOOL {
      // The job grows between the question for its size and the first that reads it.
      if (size == 0 || std::exchange(grown, true)) {
        return (*original)->CallOriginal(printer, id, level, job, size, needed);
      }
      *needed = size + 100;
      SetLastError(ERROR_INSUFFICIENT_BUFFER);
      return FALSE;
    });
    return reading;
  }
  EXPECT_EQ(function, "CloseEnhMetaFile");
  auto closing = std::make_shared<std::optional<WATCH(CloseEnhMetaFile)>>();
  closing->emplace([original = closing.get()](HDC dc) -> HENHMETAFILE {
    // What was selected is released while the metafile still records.
    EXPECT_EQ(GetCurrentObject(dc, OBJ_PEN), GetStockObject(BLACK_PEN));
    DeleteEnhMetaFile((*original)->CallOriginal(dc));
    return nullptr;
  });
  return closing;
}

const IID* TableOf(const std::string& name) {
  // A dual interface of three methods.
  static constexpr IID kDrives = {
      0xC7C3F5A1, 0x88A3, 0x11D0, {0xAB, 0xCB, 0, 0xA0, 0xC9, 0x0F, 0xFF, 0xC0}};
  return name == "page"       ? &__uuidof(IQuilloPage)
         : name == "dispatch" ? &__uuidof(IDispatch)
                              : &kDrives;
}

/// A job of tests/corpus/job/jobs.txt, whose head says what its lines mean, and what came of it.
class Job : test::SpooledJob {
 public:
  Job() {
    client_.on_call = [this](const Json& call) { Note(call); };
  }
  ~Job() { EXPECT_EQ(TakeOutcome(), ""); }
  void Execute(const std::string& line) {
    std::istringstream fields(line);
    std::string word, argument;
    fields >> word >> argument;
    const std::vector<std::string> more{std::istream_iterator<std::string>(fields), {}};
    if (word == "client") {
      const auto fault = host::ParseClientFault(argument);
      Connect(fault.value_or(host::ClientFault::kNone), argument == "session");
    } else if (word == "client-table" || word == "page-table") {
      (word == "page-table" ? client_.page_table : client_.client_table) = TableOf(argument);
    } else if (word == "unreadable" || word == "fonts-file") {
      std::ofstream(word == "unreadable" ? Connection() : FontsFile()).flush();
    } else if (word == "remove-fonts-file") {
      EXPECT_TRUE(fs::remove(FontsFile()));
    } else if (word == "waiter") {
      const auto id = std::to_wstring(Id());
      waiter_.Reset(CreateEventW(nullptr, TRUE, FALSE,
                                 (L"Global\\VORNIXQUILLO5_JOB_END" + id + L" version5").c_str()));
    } else if (word == "open") {
      job_ = Open();
      EXPECT_EQ(job_->font_folder, test::TempFolder() + L"\\QLOFNT500");
      EXPECT_TRUE(fs::exists(job_->font_folder));
    } else if (word == "margins") {
      test::SetMargins(*job_->device_settings, 0.5f, 0.25f);
      job_->device_settings->own.margin_unit = kMarginMillimetres;  // which is not looked at
    } else if (word == "display") {
      job_->printer = nullptr;
    } else if (word == "start" || word == "send") {
      job_->playback.run_length_pixels_left = 0;
      SetLastError(0);
      EndStep(word, word == "start" ? StartPage(job_) : SendPage(job_));
    } else if (word == "fail") {
      no_reference_ = argument == "CreateDCW";
      if (!no_reference_) failing_ = Failing(argument);
    } else if (word == "work") {
      failing_.reset();
    } else if (word == "close") {
      const HPEN pen = job_->playback.current_pen;
      Close(job_);
      EXPECT_EQ(GetObjectType(pen), 0u);
    } else if (word == "font") {
      LOGFONTW font = {};
      font.lfHeight = std::stoi(argument);
      lstrcpyW(font.lfFaceName, more[0] == "Mono" ? L"Liberation Mono" : L"Liberation Sans");
      Send(job_, records::REC_CREATEFONT, &font, sizeof font);
    } else if (word == "record" || word == "write") {
      std::vector<uint32_t> words = {WordOf(argument)};
      if (word == "record") words.push_back(static_cast<uint32_t>(more.size() * 4));
      for (const std::string& token : more) words.push_back(WordOf(token));
      Write(words.data(), words.size() * sizeof words[0]);
    } else if (word == "zeros") {
      const std::vector<std::byte> zeros(std::stoul(argument));
      Write(zeros.data(), zeros.size());
    } else if (word == "state") {
      const records::Point value = job_->playback.page_value;
      POINT origin = {};
      GetViewportOrgEx(job_->playback.page_dc, &origin);
      Come(Line("value ", value.x, ",", value.y, " origin ", origin.x, ",", origin.y, " unread ",
                job_->record_buffer.Unread().size(), " pages ", job_->pages_started));
    } else {
      ADD_FAILURE() << "no such line: " << line;
    }
    if (word == "open" || word == "start") {
      EXPECT_FALSE(fs::exists(Connection()) || fs::exists(Connection(true)));
    }
  }

  /// What came since the last call, the parts joined by " | ".
  std::string TakeOutcome() { return std::exchange(outcome_, {}); }

 private:
  void Come(const std::string& part) { outcome_ += (outcome_.empty() ? "" : " | ") + part; }
  void Write(const void* data, size_t size) {
    uint32_t written = 0;
    EXPECT_EQ(WriteJob(job_, data, static_cast<uint32_t>(size), &written), 1);
    EXPECT_EQ(written, size);
  }
  void EndStep(const std::string& step, bool done) {
    if (done && step == "start") {
      EXPECT_EQ(job_->playback.run_length_pixels_left, kRunLengthPixelsPerPage);
    }
    if (done) return;
    const DWORD error = GetLastError();
    EXPECT_NE(error, 0u);
    Come("no " + step + (error == ERROR_DISK_FULL ? ": disk full" : ""));
    EXPECT_EQ(LeftFiles(), files_before_);
  }

  /// A call of the client: its name and arguments but for printer and job, which must be right, the
  /// file that it can read by then, and whether a waiter has heard of the end.
  void Note(const Json& call) {
    std::string line = client_.calls.back();
    const std::string job = Line(" VORNIX Quillo 6 ", Id());
    if (const size_t at = line.find(job); at != std::string::npos) line.erase(at, job.size());
    const Json& holder = call.contains("page_object") ? call["page_object"] : call;
    if (holder.contains("path")) line += FileAt(holder["path"].get<std::string>());
    if (waiter_ && WaitForSingleObject(waiter_.Get(), 0) == WAIT_OBJECT_0) line += " signalled";
    Come(line);
  }
  std::string FileAt(const fs::path& path) const {
    EXPECT_EQ(path.parent_path(), test::TempFolder());
    if (!fs::exists(path)) return " no file";
    if (path.extension() == L".fpt") {
      EXPECT_EQ(path.stem(), std::to_wstring(Id()));
      return "";
    }
    EXPECT_TRUE(path.filename().wstring().starts_with(L"VXP"));
    ENHMETAHEADER header = {};
    const HENHMETAFILE metafile = GetEnhMetaFileW(path.c_str());
    EXPECT_NE(GetEnhMetaFileHeader(metafile, sizeof header, &header), 0u);
    DeleteEnhMetaFile(metafile);
    EXPECT_EQ(header.nDescription, 21u);
    const RECTL& drawn = header.rclBounds;
    return Line(" ", header.rclFrame.right, "x", header.rclFrame.bottom, " drawn ", drawn.left, ",",
                drawn.top, ",", drawn.right, ",", drawn.bottom);
  }

  CQloPrinter* job_ = nullptr;
  KernelHandle waiter_;
  std::shared_ptr<void> failing_;
  bool no_reference_ = false;
  std::string outcome_;
  const WATCH(MessageBoxW) boxes_{[this](auto, auto, LPCWSTR caption, UINT style) -> int {
    EXPECT_STREQ(caption, L"Error");
    EXPECT_EQ(style, static_cast<UINT>(MB_SETFOREGROUND));
    Come("box");
    return IDOK;
  }};
  WATCH(SafeArrayDestroy)
  arrays_{[this](SAFEARRAY* array) {
    Come("array freed");
    return arrays_.CallOriginal(array);
  }};
  WATCH(CreateDCW)
  reference_dcs_{[this](auto driver, auto printer, auto port, auto settings) {
    EXPECT_STREQ(printer, host::kPrinterName);
    EXPECT_TRUE(job_ == nullptr || settings == &job_->device_settings->pub);
    return no_reference_ ? nullptr : reference_dcs_.CallOriginal(driver, printer, port, settings);
  }};
};

TEST(JobScript, Jobs_ComeToWhatTheySay) {
  std::optional<Job> job;
  for (const test::ScriptLine& line : test::ReadScriptLines("job/jobs.txt")) {
    SCOPED_TRACE(line.place);
    if (line.begins_case) {
      job.reset();
      job.emplace();
    }
    job->Execute(line.text);
    if (!line.expected.empty()) {
      EXPECT_EQ(job->TakeOutcome(), line.expected);
    }
  }
}

}  // namespace
}  // namespace quillo
