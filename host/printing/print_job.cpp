#include "host/printing/print_job.h"

#include <algorithm>
#include <map>
#include <optional>

#include "config/papers/paper_geometry.h"
#include "host/base/com_apartment.h"
#include "host/base/failure.h"
#include "host/base/text.h"
#include "host/engine/driver_module.h"
#include "host/engine/print_session.h"
#include "host/pdf/unfinished.h"
#include "host/preview/preview_maker.h"
#include "host/printer/printer_setup.h"
#include "host/printer/spool_job.h"
#include "host/printing/printer_command.h"
#include "host/printing/report.h"
#include "host/printing/result_folder.h"

namespace quillo::host {

namespace {

namespace fs = std::filesystem;

constexpr wchar_t kDriverFile[] = L"QXDRV06X.dll";
constexpr size_t kMaxSentences = 8;

fs::path ThisProgram() {
  wchar_t program[MAX_PATH];
  const DWORD length = GetModuleFileNameW(nullptr, program, MAX_PATH);
  if (length == 0 || length == MAX_PATH) {
    throw SystemFailure("cannot find this program's folder", "GetModuleFileName");
  }
  return program;
}

/// One run of the command: the inputs are opened and drawn page by page, while the client copies
/// what the driver makes; each page is then checked and its losses are reported.
class PrintJob {
 public:
  PrintJob(const Options& options, Console& console) : options_(options), console_(console) {}

  /// The files that the options name.
  ExitCode PrintFiles() {
    const ComApartment apartment;  // for pictures
    OpenInputs();
    return Run([this](const ResultFolder& folder) {
      EnsurePrinter(kPrinterName, options_.dpi, UserSizes());
      StoreSettings(options_);
      PrintInputs(folder, nullptr);
    });
  }

  ExitCode PrintDocument(const DriverModule& driver, const std::string& program,
                         std::unique_ptr<PrintInput> document) {
    inputs_.push_back({program, {}, std::move(document)});
    return Run([&](const ResultFolder& folder) { PrintInputs(folder, &driver); });
  }

 private:
  struct OpenedInput {
    std::string name;
    SheetChoice sheet;
    std::unique_ptr<PrintInput> content;
  };

  template <typename PrintThem>
  ExitCode Run(PrintThem print_them) {
    if (inputs_.empty()) return result_;
    try {
      const ResultFolder folder(options_.output);
      if (options_.client != ClientFault::kAbsent) {  // starts while the job is prepared
        client_.emplace(ThisProgram(), folder.Path(), PdfPath(folder), options_.client);
      }
      print_them(folder);
      folder.WriteReport(ToJson(report_));
    } catch (const ResultFailure& failure) {
      Fail(kResultsLost, failure.what());
    } catch (const std::runtime_error& failure) {  // the spooler, the client or the driver
      Fail(kDriverFailed, failure.what());
    }
    return result_;
  }

  void OpenInputs() {
    for (const Options::Input& input : options_.inputs) {
      try {
        inputs_.push_back({input.name, input.sheet, OpenInput(input.path)});
      } catch (const UnreadableInput& refused) {
        Fail(kInputRefused, input.name + " " + refused.what());
      }
    }
  }

  /// `loaded`: the driver; null: it is loaded for this job.
  void PrintInputs(const ResultFolder& folder, const DriverModule* loaded) {
    const SpoolJob spool(kPrinterName, options_.document);
    report_.printer = ToUtf8(kPrinterName);
    report_.document = ToUtf8(options_.document);
    report_.job_id = spool.Id();

    if (options_.preview_dpi != 0) previews_.emplace(options_.preview_dpi);
    {  // the driver's job ends before the client
      std::optional<DriverModule> own;
      const DriverModule& driver = loaded ? *loaded : own.emplace(DriverFile().wstring());
      PrintSession session(driver.Functions(), {spool.Printer(), kPrinterName, L"FILE:"},
                           ModeFor(inputs_.front()).pub);
      const bool late = options_.client == ClientFault::kLate;
      if (client_ && !late) client_->Serve(spool.Id());
      session.StartDocument(options_.document, spool.Id());
      if (late) client_->Serve(spool.Id());
      inputs_.front().content->JobStarted(spool.Id(), session);
      for (OpenedInput& input : inputs_) PrintInputPages(input, session, folder);
      session.EndDocument();
    }
    CheckPreviews();
    if (!client_) return;
    report_.client = client_->Finish();
    CheckPdf(folder);
  }

  void PrintInputPages(OpenedInput& input, PrintSession& session, const ResultFolder& folder) {
    try {
      while (input.content->PreparePage()) PrintPage(input, session, folder);
    } catch (const UnreadableInput& refused) {
      Fail(kInputRefused, input.name + " " + refused.what());
    } catch (const DriverFailure& failure) {
      Fail(kDriverFailed, "cannot print " + input.name + ": " + failure.what());
    }
  }

  void PrintPage(OpenedInput& input, PrintSession& session, const ResultFolder& folder) {
    const int number = static_cast<int>(report_.pages.size()) + 1;
    const DeviceMode mode = ModeFor(input);
    const std::string title =
        "page " + std::to_string(number) + ": " + input.name + ", " +
        DescribeSheet(input.content->Mode() ? SheetOf(mode.pub) : input.sheet);
    console_.PageBegins(title);
    if (number == 1) report_.copies = input.content->WantedCopies();

    Graphics& graphics = session.StartPage(mode.pub);
    PageReport& page = report_.pages.emplace_back();
    page.input = input.name;
    page.sheet = ResolveSheet(mode).tenths.size;
    page.dpi = options_.dpi;
    page.drawn =
        input.content->DrawPage(graphics, {options_.dpi, options_.fit, options_.glyph_order});
    page.calls = graphics.Calls();
    session.SendPage();

    CheckPage(number, page, folder);
    ReportLosses(page);
    if (!page.file.empty()) console_.PageDone(title + " -> " + page.file);
  }

  /// Reads the file that the client has copied, and has its preview rendered.
  void CheckPage(int number, PageReport& page, const ResultFolder& folder) {
    const std::string file = ResultFolder::PageFile(number, "emf");
    const fs::path path = folder.Path() / file;
    if (!fs::exists(path)) {
      Fail(kResultsLost, "page " + std::to_string(number) + " did not arrive in " +
                             ToUtf8(folder.Path().wstring()));
      return;
    }
    try {
      page.content = ReadPageFile(path, page.calls.glyph_texts);
      page.file = file;
      if (!previews_) return;
      page.preview = ResultFolder::PageFile(number, "png");
      previews_->Add(number, path, folder.Path() / page.preview);
    } catch (const ResultFailure& failure) {
      Fail(kResultsLost, failure.what());
    }
  }

  void CheckPreviews() {
    if (!previews_) return;
    for (const auto& [number, failure] : previews_->Finish()) {
      report_.pages[static_cast<size_t>(number) - 1].preview.clear();
      Fail(kResultsLost, failure);
    }
  }

  /// Empty when there is to be none.
  fs::path PdfPath(const ResultFolder& folder) const {
    if (!options_.make_pdf) return {};
    return fs::absolute(options_.pdf.empty()
                            ? folder.Path() / ResultFolder::PdfFile(options_.document)
                            : options_.pdf);
  }

  void CheckPdf(const ResultFolder& folder) {
    const fs::path pdf = PdfPath(folder);
    if (pdf.empty()) return;
    const auto& made = report_.client.pdf;
    if (made.contains("pages")) {
      const bool in_folder = pdf.parent_path() == fs::absolute(folder.Path());
      for (const auto& fault : made["faults"]) {
        Fail(kResultsLost, "the PDF file lacks something of " + fault.get<std::string>());
      }
      if (made["pages"] != 0) report_.pdf = ToUtf8((in_folder ? pdf.filename() : pdf).wstring());
      return;
    }
    Fail(kResultsLost, made.contains("error")
                           ? made["error"].get<std::string>()
                           : "the client ended before it had made " + ToUtf8(pdf.wstring()));
    std::error_code ignored;
    fs::remove(pdf::Unfinished(pdf), ignored);
  }

  /// Without --strict only the first losses and remarks of each page, and no substitutes.
  void ReportLosses(const PageReport& page) {
    const std::vector<Loss> losses = LossesOf(page);
    if (options_.strict && !losses.empty()) Raise(kInputRefused);
    std::vector<std::string> sentences;
    for (const Loss& loss : losses) {
      if (options_.strict || loss.kind == Loss::Kind::kMissing) sentences.push_back(loss.what);
    }
    sentences.insert(sentences.end(), page.drawn.remarks.begin(), page.drawn.remarks.end());
    if (!options_.strict && sentences.size() > kMaxSentences) {
      sentences.resize(kMaxSentences);
      sentences.emplace_back("and more that job.json lists");
    }
    for (const std::string& what : sentences) console_.Problem(page.input + ": " + what);
  }

  DeviceMode ModeFor(const OpenedInput& input) const {
    const DeviceMode* own = input.content->Mode();
    return own != nullptr ? *own : MakeDeviceMode(kPrinterName, input.sheet, options_.dpi);
  }

  /// The sizes of the papers that are not standard forms, by their number. All sheets given as WxH
  /// share DMPAPER_USER, for which the platform knows one size in the life of a process: one that
  /// covers them all. Each page still has its own size; only its reference DC is larger.
  std::map<int, PaperSize> UserSizes() const {
    std::map<int, PaperSize> sizes;
    for (const OpenedInput& input : inputs_) {
      const SheetChoice& sheet = input.sheet;
      if (sheet.paper < DMPAPER_USER) continue;
      PaperSize& size = sizes[sheet.paper];
      size = {std::max(size.width, sheet.width), std::max(size.height, sheet.height)};
    }
    return sizes;
  }

  void Raise(ExitCode result) { result_ = Worse(result_, result); }
  void Fail(ExitCode result, const std::string& problem) {
    Raise(result);
    console_.Problem(problem);
  }

  const Options& options_;
  Console& console_;
  std::vector<OpenedInput> inputs_;
  std::optional<ClientProcess> client_;
  JobReport report_;
  std::optional<PreviewMaker> previews_;
  ExitCode result_ = kPrinted;
};

}  // namespace

ExitCode Print(const Options& options, Console& console) {
  return PrintJob(options, console).PrintFiles();
}

ExitCode PrintDocument(const Options& options, Console& console, const DriverModule& driver,
                       const std::string& program, std::unique_ptr<PrintInput> document) {
  return PrintJob(options, console).PrintDocument(driver, program, std::move(document));
}

fs::path DriverFile() { return ThisProgram().parent_path() / kDriverFile; }

}  // namespace quillo::host
