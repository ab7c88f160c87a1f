#include "faults/scenarios.h"

#include "base/ddi.h"

#include <algorithm>
#include <functional>
#include <map>
#include <optional>

#include "faults/guarded_heap.h"
#include "faults/interposer.h"
#include "host/client/client_process.h"
#include "host/emf/metafile_script.h"
#include "host/emf_player/emf_player.h"
#include "host/engine/driver_module.h"
#include "host/engine/print_session.h"
#include "host/printer/printer_setup.h"
#include "host/printer/printer_values.h"
#include "support/built_file.h"
#include "support/corpus.h"
#include "support/recording_client.h"
#include "support/registry_sandbox.h"
#include "support/renamed_font.h"

namespace quillo::faults {
namespace {

constexpr int kDpi = 150;
constexpr int16_t kCustomPaper = 300;

bool machine_is_small = false;

void WINAPI SmallMemory(MEMORYSTATUS* status) {
  GlobalMemoryStatus(status);
  if (machine_is_small) status->dwAvailPhys = status->dwAvailPageFile = 0;
}

int WINAPI NobodyReads(HWND, LPCWSTR, LPCWSTR, UINT) { return IDOK; }

void DrawScript(host::Graphics& page, const char* name) {
  static std::map<std::string, std::vector<host::emf::ScriptCase>> read;
  auto& cases = read[name];
  const auto folder = std::filesystem::path(QUILLO_SOURCE_DIR) / "tests/corpus/emf";
  if (cases.empty()) cases = host::emf::ReadScript(folder / name);
  for (const host::emf::ScriptCase& c : cases) {
    host::emf::MetafileReader reader(c.metafile);
    host::emf::EmfPlayer(reader, c.to_page, page).Play();
  }
}

host::BitmapSource Picture(uint16_t bits_per_pixel, LONG width, LONG height) {
  host::BitmapSource picture;
  picture.width = width;
  picture.height = height;
  picture.bits_per_pixel = bits_per_pixel;
  if (bits_per_pixel <= 8) picture.palette = {0, 0xFFFFFF, 0xFF0000};
  picture.bits.resize(picture.Stride() * static_cast<size_t>(height), std::byte{0x5A});
  return picture;
}

void DrawPictures(host::Graphics& page) {
  const RECTL all = {0, 0, 20, 16};
  const auto brush = host::BrushDescription::Solid(RGB(9, 99, 199));
  for (const uint16_t depth : {1, 4, 8, 16, 24, 32}) {
    const auto picture = Picture(depth, 20, 16);
    page.BitBlt(all, 0xCC, nullptr, &picture, {0, 0}, {});
    page.BitBlt(all, 0xB8, &brush, &picture, {0, 0}, {});
    for (const ULONG mode : {COLORONCOLOR, HALFTONE}) {
      page.StretchBlt({0, 0, 50, 9}, picture, all, 0xCC, nullptr, mode, {});
    }
    page.MaskBlt(all, 0xAACC, &brush, picture, all, Picture(1, 20, 16), {0, 0}, {});
    page.AlphaBlend(all, picture, all, {AC_SRC_OVER, 0, 100, 0}, {});
  }
  for (const uint16_t depth : {4, 8}) {
    auto runs = Picture(depth, 20, 16);
    runs.run_length = true;
    runs.bits = {std::byte{20}, std::byte{1}, std::byte{0}, std::byte{1}};
    page.BitBlt(all, 0xCC, nullptr, &runs, {0, 0}, {});
  }
  host::BrushDescription pattern;
  pattern.kind = host::BrushDescription::Kind::kPattern;
  pattern.pattern = std::make_shared<host::BitmapSource>(Picture(1, 8, 8));
  page.Paint(host::ClipShape(all), pattern, {});
}

/// A number for the content of a page's file. What Wine leaves undefined, the end of font records,
/// is left out.
size_t NumberFor(const std::filesystem::path& path) {
  const auto file = test::ReadFile(path);
  if (file.empty()) return 0;
  std::string content;
  host::emf::MetafileReader reader(file);
  while (const auto record = reader.Next()) {
    constexpr size_t kFont = 12 + sizeof(LOGFONTW);
    const bool is_font = record->type == EMR_EXTCREATEFONTINDIRECTW;
    const Bytes bytes = record->bytes.first(std::min(record->bytes.size(), is_font ? kFont : ~0u));
    content.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  }
  return std::hash<std::string>()(content);
}

/// Releases the reference to the client in a connection file that nobody has read.
void DropConnection(const std::wstring& path) {
  ComPtr<IStorage> storage;
  ComPtr<IStream> stream;
  if (SUCCEEDED(StgOpenStorage(path.c_str(), nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE, nullptr, 0,
                               storage.Receive())) &&
      SUCCEEDED(storage->OpenStream(L"IQuilloConnectionPiont", nullptr,
                                    STGM_READ | STGM_SHARE_EXCLUSIVE, 0, stream.Receive()))) {
    CoReleaseMarshalData(stream.Get());
  }
  stream.Reset();
  storage.Reset();
  DeleteFileW(path.c_str());
}

}  // namespace

const std::vector<Scenario> kScenarios = {
    {.name = "lines", .scripts = {"lines.txt", "paths_clips.txt"}, .points = 24},
    {.name = "pens", .scripts = {"pens_brushes.txt"}, .points = 16},
    {.name = "text", .scripts = {"text.txt"}, .points = 24},
    {.name = "bitmaps", .scripts = {"bitmaps.txt"}, .points = 24},
    {.name = "pictures", .scripts = {}, .pictures = true, .points = 32},
    {.name = "fonts", .scripts = {"../faults/fonts.txt"}, .fonts = true, .points = 64},
    {.name = "file", .scripts = {}, .short_of_memory = true, .points = 2},
    {.name = "process", .scripts = {}, .other_process = true, .points = 2},
};

struct Stage::Things {
  Things() {
    const std::wstring temp = test::TempFolder();
    host::EnsurePrinter(host::kPrinterName, kDpi, {});
    sandbox.emplace();
    RegSetKeyValueW(HKEY_CURRENT_USER, L"Environment", L"TEMP", REG_SZ, temp.c_str(),
                    static_cast<DWORD>((temp.size() + 1) * sizeof(wchar_t)));
    spool_job.emplace(host::kPrinterName, L"A document");
    host::StoreCustomPaper(host::kPrinterName, {"Faults", {kCustomPaper, 1000, 1500}});
    font = test::RenamedFont(u"Faults.TMP");
    DWORD count = 0;
    AddFontMemResourceEx(font.data(), static_cast<DWORD>(font.size()), nullptr, &count);
    driver.emplace(test::BuiltFile(L"QXDRV06X.dll"));
    interposer.TakeOver(driver->Module());
    const auto replace = [](const char* name, auto* function) {
      interposer.Replace(name, reinterpret_cast<void*>(function));
    };
    replace("HeapAlloc", &GuardedAlloc);
    replace("HeapReAlloc", &GuardedReAlloc);
    replace("HeapFree", &GuardedFree);
    replace("HeapDestroy", &GuardedDestroy);
    replace("GlobalMemoryStatus", &SmallMemory);
    replace("MessageBoxW", &NobodyReads);
    folder = test::TempFolder() + L"\\faults-" + std::to_wstring(GetCurrentProcessId());
    std::filesystem::create_directories(folder);
  }
  ~Things() { std::filesystem::remove_all(folder); }

  struct Com {
    Com() { CoInitializeEx(nullptr, COINIT_MULTITHREADED); }
    ~Com() { CoUninitialize(); }
  } com;
  std::optional<test::RegistrySandbox> sandbox;
  std::optional<host::SpoolJob> spool_job;
  std::vector<std::byte> font;
  std::optional<host::DriverModule> driver;
  std::filesystem::path folder;  // of the client in another process
};

Stage::Stage() : things_(std::make_unique<Things>()) {}
Stage::~Stage() = default;

/// One job on the stage.
class Stage::Job {
 public:
  Job(const Scenario& scenario, Things& things) : scenario_(scenario), things_(things) {
    const DWORD id = things_.spool_job->Id();
    if (scenario_.other_process) {
      process_.emplace(test::BuiltFile(L"quillo-print.exe"), id, things_.folder,
                       host::ClientFault::kNone);
    } else {
      client_.on_call = [this](const auto& call) { Hear(call); };
      client_.LeaveConnection(id);
    }
    machine_is_small = scenario_.short_of_memory;
  }

  Outcome Print() {
    try {
      PrintDocument();
    } catch (const host::DriverFailure&) {  // may be: the rest is left out
    }
    interposer.phase = "";
    if (process_) {
      for (const auto& call : process_->Finish().calls) Hear(call);
    }
    DropConnection(test::ConnectionPath(things_.spool_job->Id()));
    const bool held = client_.CountLeaks() != 0;
    outcome_.connected = heard_start_;
    if (heard_start_) {
      if (held) outcome_.problems.emplace_back("the client's objects are held");
      if (notified_ != accepted_) outcome_.problems.emplace_back("an accepted page did not come");
    }
    return outcome_;
  }

 private:
  void PrintDocument() {
    using host::MakeDeviceMode;
    const DeviceMode first = MakeDeviceMode(host::kPrinterName, {.paper = DMPAPER_A4}, kDpi);
    const DeviceMode custom =
        MakeDeviceMode(host::kPrinterName, {kCustomPaper, 1000, 1500, true}, kDpi);
    interposer.phase = "opening";
    const host::PrinterPort port = {things_.spool_job->Printer(), host::kPrinterName, L"FILE:"};
    host::PrintSession session(things_.driver->Functions(), port, first.pub);
    session.StartDocument(L"A document", things_.spool_job->Id());
    PrintPage(session, first, "drawing");
    PrintPage(session, scenario_.fonts ? custom : first, "later");
    interposer.phase = "closing";
    session.EndDocument();
  }

  void PrintPage(host::PrintSession& session, const DeviceMode& mode, const char* phase) try {
    interposer.phase = "beginning";
    host::Graphics& page = session.StartPage(mode.pub);
    interposer.phase = phase;
    for (const char* script : scenario_.scripts) DrawScript(page, script);
    if (scenario_.pictures) DrawPictures(page);
    if (scenario_.short_of_memory) {
      static const auto large = Picture(24, 2400, 2400);
      page.StretchBlt({0, 0, 99, 99}, large, {0, 0, 2400, 2400}, 0xCC, nullptr, HALFTONE, {});
    }
    page.Finish();
    if (scenario_.fonts) Escape(*session.Device().Surface());
    interposer.phase = "sending";
    session.SendPage();
    ++accepted_;
  } catch (const host::DriverFailure&) {  // no such page, perhaps the next one
  }

  void Escape(SURFOBJ& surface) const {
    const auto enable = reinterpret_cast<PFN_DrvEnableDriver>(
        reinterpret_cast<void*>(GetProcAddress(things_.driver->Module(), "DrvEnableDriver")));
    DRVENABLEDATA table = {};
    enable(DDI_DRIVER_VERSION_NT5_01, sizeof table, &table);
    const auto* escape = std::find_if(table.pdrvfn, table.pdrvfn + table.c, [](const DRVFN& entry) {
      return entry.iFunc == INDEX_DrvEscape;
    });
    int32_t units[4] = {};
    for (const ULONG code : {GETDEVICEUNITS, 5000, 5001}) {
      reinterpret_cast<PFN_DrvEscape>(reinterpret_cast<void*>(escape->pfn))(
          &surface, code, 0, nullptr, sizeof units, units);
    }
  }

  void Hear(const nlohmann::ordered_json& call) {
    heard_start_ |= call["method"] == "NotifyJobStart";
    if (call["method"] != "NotifyPage") return;
    ++notified_;
    if (!call.contains("page_object")) return;
    const auto path = scenario_.other_process
                          ? things_.folder / call.value("file", std::string("none"))
                          : std::filesystem::path(call["page_object"]["path"].get<std::string>());
    outcome_.pages.push_back(NumberFor(path));
  }

  const Scenario& scenario_;
  Things& things_;
  test::RecordingClient client_;
  std::optional<host::ClientProcess> process_;
  Outcome outcome_;
  bool heard_start_ = false;
  int accepted_ = 0;  // pages
  int notified_ = 0;
};

Outcome Stage::Print(const Scenario& scenario) { return Job(scenario, *things_).Print(); }

}  // namespace quillo::faults
