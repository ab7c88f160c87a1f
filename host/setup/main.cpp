#include "base/windows.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "base/system_owners.h"
#include "host/base/failure.h"
#include "host/base/named_mutex.h"
#include "host/base/platform.h"
#include "host/base/text.h"
#include "host/installation/installation.h"
#include "host/printer/ppd.h"
#include "host/printer/printer_setup.h"
#include "host/printing/console.h"
#include "host/printing/exit_code.h"
#include "host/printing/program.h"
#include "version.h"

// quillo-setup: puts the printer on a machine, takes it away, and says what is there.
namespace quillo::host {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

constexpr char kFooter[] =
    "Exit codes: 0 done; 2 wrong command line; 3 files to install are missing; 4 the system "
    "refused\n"
    "or failed, or with \"status\" something is missing.\n";

struct SetupOptions {
  std::string printer = ToUtf8(kPrinterName);
  bool make_default = false;
  std::string source;  // empty: this program's folder
  bool json = false;
};

bool IsElevated() {
  SID_IDENTIFIER_AUTHORITY authority = SECURITY_NT_AUTHORITY;
  PSID administrators = nullptr;
  if (!AllocateAndInitializeSid(&authority, 2, SECURITY_BUILTIN_DOMAIN_RID, DOMAIN_ALIAS_RID_ADMINS,
                                0, 0, 0, 0, 0, 0, &administrators)) {
    return false;
  }
  BOOL member = FALSE;
  const bool known = CheckTokenMembership(nullptr, administrators, &member) != FALSE;
  FreeSid(administrators);
  return known && member;
}

/// The resolution of the printer's description under Wine, dots per inch.
constexpr int kDescriptionDpi = 600;

InstallationPlan PlanFor(const SetupOptions& options) {
  InstallationPlan plan;
  plan.source =
      options.source.empty() ? ProgramFolder() : fs::absolute(fs::path(ToWide(options.source)));
  plan.printer = ToWide(options.printer);
  plan.make_default = options.make_default;
  if (RunsUnderWine()) {
    // Wine has no driver packages, and its own printer driver makes the DCs.
    plan.data_file = {kDescriptionFile, MakePpd(kDescriptionDpi, {})};
  } else {
    plan.as_package = true;
  }
  return plan;
}

std::string CheckPrinterName(const std::string& name) {
  const std::wstring wide = ToWide(name);
  const bool usable = !wide.empty() && wide.size() <= 220 &&
                      wide.find_first_of(L"\\/,!\"") == std::wstring::npos &&
                      std::ranges::none_of(wide, [](wchar_t c) { return c < L' '; });
  return usable ? "" : "a printer's name has 1 to 220 characters and none of \\ / , ! \"";
}

std::string Describe(const Part& part) { return ToUtf8(DescribePart(part)); }

/// Whether the policy of Windows protected print mode is on: then no third-party driver prints.
bool IsProtectedPrintOn() {
  DWORD state = 0, size = sizeof state;
  return RegGetValueW(HKEY_LOCAL_MACHINE,
                      L"Software\\Policies\\Microsoft\\Windows NT\\Printers\\WPP",
                      L"WindowsProtectedPrintGroupPolicyState", RRF_RT_REG_DWORD, nullptr, &state,
                      &size) == ERROR_SUCCESS &&
         state == 1;
}

class Setup {
 public:
  Setup(const SetupOptions& options, Console& console) : options_(options), console_(console) {}

  ExitCode Install() {
    const InstallationPlan plan = PlanFor(options_);
    const std::vector<std::wstring> missing = MissingFiles(plan);
    if (!missing.empty()) {
      console_.Problem("cannot install: " + ToUtf8((plan.source / missing.front()).wstring()) +
                       " is missing; say with --from where the files are");
      return kInputRefused;
    }
    if (!MayChange()) return kDriverFailed;
    if (IsProtectedPrintOn()) {
      console_.Problem(
          "Windows protected print mode is on: the printer will not print until it is off");
    }
    PrintSystem system;
    Installation(system, plan).Install();
    console_.Write("installed: " + options_.printer + "\n");
    return kPrinted;
  }

  ExitCode Remove() {
    if (!MayChange()) return kDriverFailed;
    PrintSystem system;
    for (const Part& part : RemoveInstallation(system)) {
      console_.Write("removed: " + Describe(part) + "\n");
    }
    return kPrinted;
  }

  ExitCode Status() {
    PrintSystem system;
    const auto parts = Installation(system, PlanFor(options_)).Status();
    const bool complete = std::ranges::all_of(parts, [](const auto& part) { return part.second; });
    if (options_.json) {
      Json status{{"installed", complete},
                  {"protected_print_mode", IsProtectedPrintOn()},
                  {"parts", Json::array()},
                  {"noted", Json::array()}};
      for (const auto& [part, there] : parts) {
        status["parts"].push_back({{"part", Describe(part)}, {"there", there}});
      }
      for (const Part& part : NotedParts(system)) status["noted"].push_back(Describe(part));
      console_.Write(status.dump(2, ' ', false, Json::error_handler_t::replace) + "\n");
    } else {
      for (const auto& [part, there] : parts) {
        console_.Write((there ? "there:   " : "missing: ") + Describe(part) + "\n");
      }
      console_.Write(std::string("Windows protected print mode by policy: ") +
                     (IsProtectedPrintOn() ? "on; the printer cannot print\n" : "off\n"));
    }
    return complete ? kPrinted : kDriverFailed;
  }

 private:
  bool MayChange() {
    if (IsElevated()) return true;
    console_.Problem("only an administrator can do this: run it from an elevated prompt");
    return false;
  }

  const SetupOptions& options_;
  Console& console_;
};

int Run(std::vector<std::string> arguments) {
  SetupOptions options;
  CLI::App app("Installs, removes and examines the printer.", "quillo-setup");
  app.allow_windows_style_options(false);
  app.footer(kFooter);
  app.require_subcommand(1);
  app.set_help_flag("-h,--help", "Show this help");
  app.set_version_flag("--version", "quillo-setup " QUILLO_VERSION);
  const auto add_printer = [&](CLI::App* command) {
    command->add_option("--printer", options.printer, "Name of the printer")
        ->type_name("NAME")
        ->check(CLI::Validator(CheckPrinterName, ""))
        ->capture_default_str();
  };
  CLI::App* install = app.add_subcommand("install", "Install the driver and a printer");
  add_printer(install);
  install->add_flag("--default", options.make_default, "Make it the default printer");
  CLI::App* remove = app.add_subcommand("remove", "Remove everything that was installed");
  CLI::App* status = app.add_subcommand("status", "Show what is there and what is missing");
  add_printer(status);
  status->add_flag("--json", options.json, "As JSON");
  for (CLI::App* command : {install, status}) {
    command->add_option("--from", options.source, "Folder of the files; by default this program's")
        ->type_name("DIR");
  }
  Console console(false, "quillo-setup");
  return RunProgram(app, std::move(arguments), console, [&] {
    Setup setup(options, console);
    if (status->parsed()) return setup.Status();
    const NamedMutex only_one(L"Global\\QuilloSetup");
    return remove->parsed() ? setup.Remove() : setup.Install();
  });
}

}  // namespace
}  // namespace quillo::host

int wmain(int count, wchar_t** arguments) {
  return quillo::host::Run(quillo::host::ArgumentsOf(count, arguments));
}
