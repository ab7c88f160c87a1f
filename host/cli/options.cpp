#include "host/cli/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <map>
#include <optional>

#include "host/base/platform.h"
#include "host/base/text.h"
#include "host/cli/exit_code.h"
#include "host/cli/version.h"

namespace quillo::host {

namespace {

constexpr char kFooter[] =
    "--paper, --landscape and --portrait hold for the inputs that follow them; behind the last\n"
    "input they hold for every input that has none of its own:\n"
    "  print --paper A4 a.emf --paper A3 --landscape b.emf --paper Letter --portrait c.emf\n"
    "\n"
    "Results: page-0001.emf and page-0001.png ..., embedded fonts, and job.json.\n"
    "Exit codes: 0 printed; 2 wrong command line; 3 an input cannot be read or printed (the "
    "others\n"
    "are); 4 the driver refused or failed; 5 results could not be written.\n";

std::filesystem::path ToPath(const std::string& text) {
  const std::wstring path = ToWide(text);
  return RunsUnderWine() && path.starts_with(L'/') ? L"Z:" + path : path;
}

/// A sheet as far as the command line has said.
struct SheetWish {
  std::optional<std::string> paper;
  std::optional<bool> landscape;

  /// What this wish leaves open is taken from `other`.
  SheetWish Or(const SheetWish& other) const {
    return {paper ? paper : other.paper, landscape ? landscape : other.landscape};
  }
  Sheet ToSheet() const {
    Sheet sheet = paper ? ParsePaper(*paper).value_or(Sheet{}) : Sheet{};
    sheet.landscape = landscape.value_or(false);
    return sheet;
  }
};

/// The command line's options, and the values that they take.
class Parser {
 public:
  Parser() : app_("Prints files as the pages of one job, through the printer driver.", "print") {
    app_.allow_windows_style_options(false);
    app_.footer(kFooter);
    app_.set_help_flag("-h,--help", "Show this help");
    app_.set_version_flag("--version", kVersion);
    input_ = app_.add_option("INPUT", inputs_, "Files to print")->required()->type_name("");
    app_.add_option("-o,--output", output_, "Folder for the results; it is made when missing")
        ->type_name("DIR")
        ->capture_default_str();
    paper_ = app_.add_option("--paper", papers_,
                             "Sheet: a name such as A4 or Letter, or WxH in millimetres; by "
                             "default Letter")
                 ->check(CLI::Validator(CheckPaper, ""))
                 ->type_name("NAME|WxH")
                 ->take_all()
                 ->allow_extra_args(false);
    landscape_ = AddFlag("--landscape", "Turn the sheet");
    portrait_ = AddFlag("--portrait", "Keep the sheet upright");
    app_.add_option("--dpi", options_.dpi, "Print quality")
        ->type_name("N")
        ->check(CLI::Range(kLeastDpi, kMostDpi))
        ->capture_default_str();
    CLI::Option* fit = AddFlag("--fit", "Scale pictures into the printable area (default)");
    actual_size_ = AddFlag("--actual-size", "Keep the size of pictures")->excludes(fit);
    app_.add_option("--document", document_, "Name of the document; by default the first file's")
        ->type_name("NAME");
    app_.add_option("--preview", options_.preview_dpi, "Dots per inch of the PNG files; 0 for none")
        ->type_name("DPI")
        ->check(CLI::Range(0, 1200))
        ->capture_default_str();
    glyph_order_ = AddFlag("--assume-glyph-order,!--no-assume-glyph-order",
                           "Draw text of glyph numbers also when its font is not installed, with "
                           "the substitute's glyphs; by default where the substitute keeps the "
                           "common order");
    app_.add_flag("--quiet", options_.quiet, "Report nothing but problems");
    // For tests: how the client misbehaves.
    app_.add_option("--client", client_)->check(CLI::Validator(CheckClient, ""))->group("");
  }

  std::variant<Options, Answer> Parse(std::vector<std::string> arguments) {
    std::reverse(arguments.begin(), arguments.end());
    try {
      app_.parse(std::move(arguments));
    } catch (const CLI::CallForHelp&) {
      return Answer{kPrinted, app_.help()};
    } catch (const CLI::CallForVersion& version) {
      return Answer{kPrinted, std::string(version.what()) + "\n"};
    } catch (const CLI::ParseError& wrong) {
      return Answer{kWrongUsage, std::string("quillo-print: ") + wrong.what() + "\nTry --help.\n"};
    }
    return Result();
  }

 private:
  CLI::Option* AddFlag(const char* name, const std::string& description) {
    return app_.add_flag(name, description);
  }
  static std::string CheckPaper(const std::string& text) {
    if (ParsePaper(text)) return {};
    return "no paper is called \"" + text + "\"; name one such as A4, or give WxH in millimetres";
  }
  static std::string CheckClient(const std::string& text) {
    return ParseClientFault(text) ? std::string() : "no such client: " + text;
  }

  Options Result() {
    options_.output = ToPath(output_);
    options_.fit = actual_size_->count() == 0;
    if (glyph_order_->count() != 0) {
      options_.glyph_order =
          glyph_order_->as<bool>() ? emf::GlyphOrder::kAssume : emf::GlyphOrder::kDrop;
    }
    options_.client = ParseClientFault(client_).value_or(ClientFault::kNone);
    TakeInputs();
    options_.document =
        document_.empty() ? options_.inputs.front().path.filename().wstring() : ToWide(document_);
    return std::move(options_);
  }

  /// Goes through the command line in its order.
  void TakeInputs() {
    SheetWish wish;      // holds for the next inputs
    SheetWish trailing;  // said since the last input
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
    for (size_t i = 0; i < wishes.size(); ++i) {
      options_.inputs[i].sheet = wishes[i].Or(trailing).ToSheet();
    }
  }

  CLI::App app_;
  CLI::Option* input_ = nullptr;
  CLI::Option* paper_ = nullptr;
  CLI::Option* landscape_ = nullptr;
  CLI::Option* portrait_ = nullptr;
  CLI::Option* actual_size_ = nullptr;
  CLI::Option* glyph_order_ = nullptr;
  std::vector<std::string> inputs_;
  std::vector<std::string> papers_;
  std::string output_ = "out";
  std::string document_;
  std::string client_ = "none";
  Options options_;
};

}  // namespace

std::variant<Options, Answer> ParseCommandLine(const std::vector<std::string>& arguments) {
  return Parser().Parse(arguments);
}

}  // namespace quillo::host
