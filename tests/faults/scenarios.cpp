#include "faults/scenarios.h"

#include <optional>

#include "fuzz/harness/guarded_heap.h"
#include "fuzz/harness/interposer.h"
#include "fuzz/harness/page_content.h"
#include "host/base/com_apartment.h"
#include "host/client/client_process.h"
#include "host/emf/drawn_script.h"
#include "host/engine/driver_module.h"
#include "host/engine/print_session.h"
#include "host/printer/printer_setup.h"
#include "host/printer/printer_values.h"
#include "host/printer/spool_job.h"
#include "support/built_file.h"
#include "support/holdings.h"
#include "support/recording_client.h"
#include "support/registry_sandbox.h"
#include "support/renamed_font.h"

namespace quillo::faults {
namespace {

using harness::interposer;

constexpr int kDpi = 150;
constexpr int16_t kCustomPaper = 300;

bool machine_is_small = false;

void WINAPI ReportMemory(MEMORYSTATUS* status) {
  GlobalMemoryStatus(status);
  if (machine_is_small) status->dwAvailPhys = status->dwAvailPageFile = 0;
}
int WINAPI NobodyReads(HWND, LPCWSTR, LPCWSTR, UINT) { return IDOK; }

void DrawLargePicture(host::Graphics& page) {
  static host::BitmapSource large;
  large.width = large.height = 2400;
  large.bits_per_pixel = 24;
  page.StretchBlt({0, 0, 99, 99}, large, {0, 0, 2400, 2400}, 0xCC, nullptr, HALFTONE, {});
}

/// Releases the reference to the client in a connection file that nobody has read.
void DropConnection(const std::wstring& path) {
  constexpr DWORD kMode = STGM_READ | STGM_SHARE_EXCLUSIVE;
  ComPtr<IStorage> storage;
  ComPtr<IStream> stream;
  StgOpenStorage(path.c_str(), nullptr, kMode, nullptr, 0, storage.Receive());
  if (storage) {
    storage->OpenStream(L"IQuilloConnectionPiont", nullptr, kMode, 0, stream.Receive());
  }
  if (stream) CoReleaseMarshalData(stream.Get());
  stream.Reset();
  storage.Reset();
  DeleteFileW(path.c_str());
}

}  // namespace

const std::vector<Scenario> kScenarios = {
    {.name = "lines", .scripts = {"emf/lines.txt", "emf/paths_clips.txt"}, .points = 24},
    {.name = "pens", .scripts = {"emf/pens_brushes.txt"}, .points = 16},
    {.name = "text", .scripts = {"emf/text.txt"}, .points = 24},
    {.name = "bitmaps", .scripts = {"emf/bitmaps.txt"}, .points = 24},
    {.name = "pictures", .scripts = {"faults/pictures.txt"}, .points = 32},
    {.name = "fonts", .scripts = {"faults/fonts.txt"}, .points = 64, .custom_paper = true},
    {.name = "file", .scripts = {}, .points = 2, .short_of_memory = true},
    {.name = "process", .scripts = {}, .points = 2, .other_process = true},
};

struct Stage::Things {
  Things() {
    const std::wstring temp = test::TempFolder();
    host::EnsurePrinter(host::kPrinterName, kDpi, {});
    sandbox.emplace();
    RegSetKeyValueW(HKEY_CURRENT_USER, L"Environment", L"TEMP", REG_SZ, temp.c_str(),
                    static_cast<DWORD>((temp.size() + 1) * sizeof(wchar_t)));
    host::StoreCustomPaper(host::kPrinterName, {"Faults", {kCustomPaper, 1000, 1500}});
    DWORD count = 0;
    AddFontMemResourceEx(font.data(), static_cast<DWORD>(font.size()), nullptr, &count);
    spool_job.emplace(host::kPrinterName, L"A document");
    driver.emplace(test::BuiltFile(L"QXDRV06X.dll"));
    interposer.TakeOver(driver->Module());
    harness::GuardHeap();
    interposer.Replace("GlobalMemoryStatus", &ReportMemory);
    interposer.Replace("MessageBoxW", &NobodyReads);
    folder = temp + L"\\faults-" + std::to_wstring(GetCurrentProcessId());
    std::filesystem::create_directories(folder);
  }
  ~Things() { std::filesystem::remove_all(folder); }

  host::ComApartment apartment;
  std::optional<test::RegistrySandbox> sandbox;
  std::vector<std::byte> font = test::RenamedFont(u"Faults.TMP");
  std::optional<host::SpoolJob> spool_job;
  std::optional<host::DriverModule> driver;
  std::filesystem::path folder;  // of the client in another process
};

Stage::Stage() : things_(std::make_unique<Things>()) {}
Stage::~Stage() = default;

class Stage::Job {
 public:
  Job(const Scenario& scenario, Things& things) : scenario_(scenario), things_(things) {
    const DWORD id = things_.spool_job->Id();
    machine_is_small = scenario_.short_of_memory;
    if (scenario_.other_process) {
      process_.emplace(test::BuiltFile(L"quillo-print.exe"), things_.folder,
                       std::filesystem::path(), host::ClientFault::kNone);
      process_->Serve(id);
    } else {
      client_.on_call = [this](const auto& call) { Hear(call); };
      client_.LeaveConnection(id);
    }
  }

  Outcome Print() {
    const uintptr_t handles = test::LiveKernelHandles();
    try {
      PrintDocument();
    } catch (const host::DriverFailure&) {  // the rest is left out
    }
    interposer.phase = "";
    // (Later, COM keeps some for the client's object.)
    outcome_.leaves_handles = test::LiveKernelHandles() > handles;
    if (process_) {
      for (const auto& call : process_->Finish().calls) Hear(call);
    }
    DropConnection(test::ConnectionPath(things_.spool_job->Id()));
    const bool held = client_.CountLeaks() != 0;
    if (!outcome_.connected) return outcome_;
    if (held) outcome_.problems.emplace_back("the client's objects are held");
    if (notified_ != accepted_) outcome_.problems.emplace_back("an accepted page did not come");
    return outcome_;
  }

 private:
  void PrintDocument() {
    const auto mode = [](const host::SheetChoice& sheet) {
      return host::MakeDeviceMode(host::kPrinterName, sheet, kDpi);
    };
    const DeviceMode first = mode({.paper = DMPAPER_A4});
    const DeviceMode custom = mode({kCustomPaper, 1000, 1500, true});
    interposer.phase = "opening";
    host::PrintSession session(things_.driver->Functions(),
                               {things_.spool_job->Printer(), host::kPrinterName, L"FILE:"},
                               first.pub);
    session.StartDocument(L"A document", things_.spool_job->Id());
    PrintPage(session, first, "drawing");
    PrintPage(session, scenario_.custom_paper ? custom : first, "drawing the next page");
    interposer.phase = "closing";
    session.EndDocument();
  }

  void PrintPage(host::PrintSession& session, const DeviceMode& mode, const char* phase) try {
    interposer.phase = "beginning";
    host::Graphics& page = session.StartPage(mode.pub);
    interposer.phase = phase;
    for (const char* script : scenario_.scripts) host::emf::DrawScript(page, script);
    if (scenario_.short_of_memory) DrawLargePicture(page);
    page.Finish();
    int32_t units[4] = {};
    for (const ULONG escape : {GETDEVICEUNITS, 5000, 5001}) {
      things_.driver->Functions().Escape(session.Device().Surface(), escape, 0, nullptr,
                                         sizeof units, units);
    }
    interposer.phase = "sending";
    session.SendPage();
    ++accepted_;
  } catch (const host::DriverFailure&) {  // no such page, perhaps the next one
  }

  void Hear(const nlohmann::ordered_json& call) {
    outcome_.connected |= call["method"] == "NotifyJobStart";
    if (call["method"] != "NotifyPage") return;
    ++notified_;
    if (!call.contains("page_object")) return;
    outcome_.pages.push_back(harness::PageContent(
        scenario_.other_process ? things_.folder / call.value("file", "none")
                                : std::filesystem::path(call["page_object"].value("path", ""))));
  }

  const Scenario& scenario_;
  Things& things_;
  test::RecordingClient client_;
  std::optional<host::ClientProcess> process_;
  Outcome outcome_;
  int accepted_ = 0;  // pages
  int notified_ = 0;
};

Outcome Stage::Print(const Scenario& scenario) { return Job(scenario, *things_).Print(); }

}  // namespace quillo::faults
