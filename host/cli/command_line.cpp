#include "host/cli/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <map>
#include <optional>

#include "host/base/platform.h"
#include "host/base/text.h"
#include "host/printing/exit_code.h"
#include "version.h"

namespace quillo::host {

namespace {

constexpr char kFooter[] =
    "--paper, --landscape and --portrait hold for the inputs that follow them; after the last\n"
    "input they hold for every input that has none of its own:\n"
    "  print --paper A4 a.emf --paper A3 --landscape b.emf --paper Letter --portrait c.emf\n"
    "A program's pages have the sheets that it chooses, and these in the place of the default "
    "one:\n"
    "  print --paper A4 --app notepad.exe /p letter.txt\n"
    "\n"
    "Results: page-0001.emf and page-0001.png ..., a PDF file, embedded fonts, and job.json.\n"
    "Exit codes: 0 printed; 2 wrong command line; 3 an input cannot be read or printed (the "
    "others\n"
    "are), or with --strict a page lacks something; 4 the driver refused or failed; 5 results "
    "could\n"
    "not be written.\n";

std::filesystem::path ToPath(const std::string& text) {
  const std::wstring path = ToWide(text);
  return RunsUnderWine() && path.starts_with(L'/') ? L"Z:" + path : path;
}

/// A sheet as far as the command line names it.
struct SheetWish {
  std::optional<std::string> paper;
  std::optional<bool> landscape;

  /// This wish, with what it leaves open taken from `other`.
  SheetWish Or(const SheetWish& other) const {
    return {paper ? paper : other.paper, landscape ? landscape : other.landscape};
  }
  /// Throws CLI::ValidationError.
  SheetChoice ToSheet(const std::vector<NamedSheet>& custom) const {
    const std::optional<SheetChoice> known = paper ? ParsePaper(*paper, custom) : SheetChoice{};
    if (!known) {
      throw CLI::ValidationError(
          "--paper",
          "no paper is called \"" + *paper + "\"; see --list-papers, or give WxH in millimetres");
    }
    SheetChoice sheet = *known;
    sheet.landscape = landscape.value_or(false);
    return sheet;
  }
};

/// The command line's options, and the values that they take.
class Parser {
 public:
  explicit Parser(const std::vector<NamedSheet>& stored_papers)
      : app_("Prints files as the pages of one job, through the printer driver.", "print"),
        stored_papers_(stored_papers) {
    app_.allow_windows_style_options(false);
    app_.footer(kFooter);
    app_.set_help_flag("-h,--help", "Show this help");
    app_.set_version_flag("--version", "quillo-print " QUILLO_VERSION);
    input_ = app_.add_option("INPUT", inputs_, "Files to print")->type_name("");
    app_.add_option("-o,--output", output_, "Folder for the results; it is made when missing")
        ->type_name("DIR")
        ->capture_default_str();
    paper_ = app_.add_option("--paper", papers_,
                             "Sheet: a name such as A4 or Letter, or WxH in millimetres; by "
                             "default Letter")
                 ->type_name("NAME|WxH")
                 ->take_all()
                 ->allow_extra_args(false);
    landscape_ = AddFlag("--landscape", "Turn the sheet");
    portrait_ = AddFlag("--portrait", "Keep the sheet upright");
    app_.add_option("--dpi", options_.dpi, "Print quality")
        ->type_name("N")
        ->check(CLI::Range(kMinDpi, kMaxDpi))
        ->capture_default_str();
    CLI::Option* fit = AddFlag("--fit", "Scale pictures into the printable area (default)");
    actual_size_ = AddFlag("--actual-size", "Keep the size of pictures")->excludes(fit);
    app_.add_option("--document", document_, "Name of the document; by default the first file's")
        ->type_name("NAME");
    app_.add_option("--preview", options_.preview_dpi, "Dots per inch of the PNG files; 0 for none")
        ->type_name("DPI")
        ->check(CLI::Range(0, 1200))
        ->capture_default_str();
    CLI::Option* pdf = app_.add_option("--pdf", pdf_,
                                       "PDF file of all pages; by default "
                                       "DIR/<document>.pdf")
                           ->type_name("FILE");
    no_pdf_ = AddFlag("--no-pdf", "Make no PDF file")->excludes(pdf);
    glyph_order_ = AddFlag("--assume-glyph-order,!--no-assume-glyph-order",
                           "Draw text of glyph numbers also when its font is not installed, with "
                           "the substitute's glyphs; by default where the substitute keeps the "
                           "common order");
    app_.add_flag("--list-papers", options_.list_papers, "List the papers that --paper knows");
    custom_paper_ = AddRepeated(
        "--custom-paper", custom_papers_, "NAME,NUMBER,WxH",
        "Give the printer a paper: a number above 256, a size in millimetres; it stays");
    printer_value_ =
        AddRepeated("--printer-data", printer_values_, "NAME=VALUE",
                    "Store a value in the printer's data: a text, dword:N or hex:..; it stays");
    app_option_ = app_.add_option("--app", program_,
                                  "Run a Windows program and print what it prints; this option is "
                                  "the last")
                      ->type_name("PROGRAM [ARGS...]")
                      ->excludes(input_);
    confirm_ = AddFlag("--app-confirm", "Press OK in the program's dialogs")->needs(app_option_);
    timeout_ = app_.add_option("--app-timeout", seconds_,
                               "How long the program may take to the first document, and be silent "
                               "inside one; by default 60 without a display, else for ever")
                   ->type_name("SECONDS")
                   ->check(CLI::Range(1, 1'000'000))
                   ->needs(app_option_);
    app_.add_flag("--strict", options_.strict,
                  "Exit with 3 when a page lacks something or has a substitute for it, and list "
                  "everything");
    app_.add_flag("--quiet", options_.quiet, "Report nothing but problems");
    // Hidden, for tests: how the client misbehaves.
    app_.add_option("--client", client_)->check(CLI::Validator(CheckClient, ""))->group("");
  }

  std::variant<Options, Answer> Parse(std::vector<std::string> arguments) {
    TakeProgramArguments(arguments);
    std::reverse(arguments.begin(), arguments.end());
    try {
      app_.parse(std::move(arguments));
      return Result();
    } catch (const CLI::CallForHelp&) {
      return Answer{kPrinted, app_.help()};
    } catch (const CLI::CallForVersion& version) {
      return Answer{kPrinted, std::string(version.what()) + "\n"};
    } catch (const CLI::ParseError& wrong) {
      return Answer{kWrongUsage, std::string("quillo-print: ") + wrong.what() + "\nTry --help.\n"};
    }
  }

 private:
  CLI::Option* AddFlag(const char* name, const std::string& description) {
    return app_.add_flag(name, description);
  }
  CLI::Option* AddRepeated(const char* name, std::vector<std::string>& values, const char* type,
                           const char* description) {
    return app_.add_option(name, values, description)
        ->type_name(type)
        ->take_all()
        ->allow_extra_args(false);
  }

  /// Parses each text; throws CLI::ValidationError for one that `parse` refuses.
  template <typename Value, typename Parse>
  static std::vector<Value> ParseAll(const CLI::Option* option,
                                     const std::vector<std::string>& texts, Parse parse) {
    std::vector<Value> values;
    for (const std::string& text : texts) {
      std::string why;
      std::optional<Value> value = parse(text, why);
      if (!value) {
        throw CLI::ValidationError(
            option->get_name(),
            "\"" + text + "\" is no " + option->get_type_name() + (why.empty() ? "" : ": " + why));
      }
      values.push_back(std::move(*value));
    }
    return values;
  }

  static std::string CheckClient(const std::string& text) {
    return ParseClientFault(text) ? std::string() : "no such client: " + text;
  }

  Options Result() {
    options_.output = ToPath(output_);
    options_.make_pdf = no_pdf_->count() == 0;
    if (!pdf_.empty()) options_.pdf = ToPath(pdf_);
    options_.fit = actual_size_->count() == 0;
    if (glyph_order_->count() != 0) {
      options_.glyph_order = glyph_order_->as<bool>() ? GlyphOrder::kAssume : GlyphOrder::kDrop;
    }
    options_.client = ParseClientFault(client_).value_or(ClientFault::kNone);
    options_.custom_papers = ParseAll<NamedSheet>(custom_paper_, custom_papers_, ParseCustomPaper);
    options_.printer_values = ParseAll<PrinterValue>(
        printer_value_, printer_values_,
        [](std::string_view text, std::string&) { return ParsePrinterValue(text); });
    TakeInputs();
    const bool settings_only =
        options_.list_papers || !options_.custom_papers.empty() || !options_.printer_values.empty();
    TakeProgram();
    if (options_.inputs.empty() && !options_.app && !settings_only) {
      throw CLI::RequiredError("INPUT");
    }
    options_.document = ToWide(document_);
    if (document_.empty() && !options_.inputs.empty()) {
      options_.document = options_.inputs.front().path.filename().wstring();
    }
    return std::move(options_);
  }

  /// Takes what follows --app and its program off the command line: it is the program's.
  void TakeProgramArguments(std::vector<std::string>& arguments) {
    const auto app = std::ranges::find(arguments, "--app");
    if (arguments.end() - app < 2) return;
    for (auto argument = app + 2; argument != arguments.end(); ++argument) {
      program_arguments_.push_back(ToWide(*argument));
    }
    arguments.erase(app + 2, arguments.end());
  }

  void TakeProgram() {
    if (app_option_->count() == 0) return;
    AppOptions& app = options_.app.emplace();
    app.program = ToPath(program_).wstring();
    app.arguments = std::move(program_arguments_);
    app.confirm = confirm_->count() != 0;
    if (timeout_->count() != 0) app.timeout = seconds_;
    if (last_wish_.paper || last_wish_.landscape) app.sheet = last_wish_.ToSheet(KnownPapers());
  }

  std::vector<NamedSheet> KnownPapers() const {
    std::vector<NamedSheet> papers = options_.custom_papers;
    papers.insert(papers.end(), stored_papers_.begin(), stored_papers_.end());
    return papers;
  }

  /// Goes through the command line in order, and gives each input its sheet.
  void TakeInputs() {
    SheetWish& wish = last_wish_;  // holds for the next inputs
    SheetWish trailing;            // named since the last input
    std::vector<SheetWish> wishes;
    std::map<const CLI::Option*, size_t> seen;
    for (const CLI::Option* option : app_.parse_order()) {
      const size_t index = seen[option]++;
      if (option == input_) {
        options_.inputs.push_back({inputs_[index], ToPath(inputs_[index]), {}});
        wishes.push_back(wish);
        trailing = {};
      } else if (option == paper_) {
        wish.paper = trailing.paper = papers_[index];
      } else if (option == landscape_ || option == portrait_) {
        wish.landscape = trailing.landscape = option == landscape_;
      }
    }
    const std::vector<NamedSheet> papers = KnownPapers();
    for (size_t i = 0; i < wishes.size(); ++i) {
      options_.inputs[i].sheet = wishes[i].Or(trailing).ToSheet(papers);
    }
  }

  CLI::App app_;
  const std::vector<NamedSheet>& stored_papers_;
  CLI::Option* input_ = nullptr;
  CLI::Option* paper_ = nullptr;
  CLI::Option* landscape_ = nullptr;
  CLI::Option* portrait_ = nullptr;
  CLI::Option* actual_size_ = nullptr;
  CLI::Option* no_pdf_ = nullptr;
  CLI::Option* glyph_order_ = nullptr;
  CLI::Option* app_option_ = nullptr;
  CLI::Option* confirm_ = nullptr;
  CLI::Option* timeout_ = nullptr;
  CLI::Option* custom_paper_ = nullptr;
  CLI::Option* printer_value_ = nullptr;
  std::vector<std::string> inputs_;
  std::vector<std::string> papers_;
  std::vector<std::string> custom_papers_;
  std::vector<std::string> printer_values_;
  std::string output_ = "out";
  std::string document_;
  std::string pdf_;
  std::string client_ = "none";
  std::string program_;
  std::vector<std::wstring> program_arguments_;
  int seconds_ = 0;
  SheetWish last_wish_;  // of the end of the command line
  Options options_;
};

}  // namespace

std::variant<Options, Answer> ParseCommandLine(const std::vector<std::string>& arguments,
                                               const std::vector<NamedSheet>& stored_papers) {
  return Parser(stored_papers).Parse(arguments);
}

}  // namespace quillo::host
