#include "base/windows.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <future>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <setupapi.h>
#include <shlobj.h>
#include <string>

#include "base/gdi_owners.h"
#include "base/system_owners.h"
#include "host/base/failure.h"
#include "host/base/file_name.h"
#include "host/base/text.h"
#include "host/client_app/job_service.h"
#include "host/client_app/resident.h"
#include "host/installation/installation.h"
#include "host/printer/printer_setup.h"
#include "support/built_file.h"
#include "support/case_table.h"
#include "support/program.h"
#include "ui/printer_interface.h"

// The life of the printer on a fresh machine.
namespace quillo::host {
namespace {

namespace fs = std::filesystem;

test::ProgramResult RunProgram(const std::wstring& program, const std::wstring& arguments) {
  return test::RunProgram(program, arguments, fs::temp_directory_path());
}

fs::path Folder() { return fs::path(test::BuiltFile(L"")); }

/// Everything that an installation could leave: registry values and files.
class Traces {
 public:
  Traces() {
    AddKey(HKEY_LOCAL_MACHINE, L"System\\CurrentControlSet\\Control\\Print");
    AddKey(HKEY_LOCAL_MACHINE, L"Software\\Halvard Technologies, Inc.");
    AddKey(HKEY_LOCAL_MACHINE, L"Software\\Wow6432Node\\Halvard Technologies, Inc.");
    AddKey(HKEY_LOCAL_MACHINE, L"Software\\Microsoft\\Windows NT\\CurrentVersion\\Ports");
    AddKey(HKEY_CLASSES_ROOT, L"TypeLib");
    AddKey(HKEY_CLASSES_ROOT, L"Interface\\{7A3E5D12-9B41-4C6F-A8D2-3F5B9C0E1D47}");
    AddKey(HKEY_CURRENT_USER, L"Software\\Microsoft\\Windows NT\\CurrentVersion");
    AddKey(HKEY_CURRENT_USER, L"Software\\Wow6432Node\\Halvard Technologies, Inc.");
    AddKey(HKEY_CURRENT_USER, L"Printers");
    for (const auto& entry : fs::recursive_directory_iterator(L"C:\\windows\\system32\\spool")) {
      if (entry.is_regular_file()) found_[entry.path()] = test::ReadText(entry.path());
    }
  }
  /// What is in one and not the same in the other.
  friend std::string Difference(const Traces& a, const Traces& b) {
    std::string difference;
    for (const auto& [name, content] : a.found_) {
      const auto same = b.found_.find(name);
      if (same == b.found_.end() || same->second != content) difference += ToUtf8(name) + "\n";
    }
    for (const auto& [name, content] : b.found_) {
      if (!a.found_.contains(name)) difference += "+ " + ToUtf8(name) + "\n";
    }
    return difference;
  }

 private:
  void AddKey(HKEY root, const std::wstring& path) {
    RegistryKey key;
    if (RegOpenKeyExW(root, path.c_str(), 0, KEY_READ, key.Receive()) != ERROR_SUCCESS) return;
    wchar_t name[512];
    for (DWORD i = 0, size = 512; RegEnumKeyExW(key.Get(), i, name, &size, nullptr, nullptr,
                                                nullptr, nullptr) == ERROR_SUCCESS;
         ++i, size = 512) {
      AddKey(root, path + L"\\" + name);
    }
    std::string data(65536, '\0');
    DWORD size = 512, bytes = 65536;
    for (DWORD i = 0; RegEnumValueW(key.Get(), i, name, &size, nullptr, nullptr,
                                    reinterpret_cast<BYTE*>(data.data()), &bytes) == ERROR_SUCCESS;
         ++i, size = 512, bytes = 65536) {
      found_[path + L" " + name] = data.substr(0, bytes);
    }
  }

  std::map<std::wstring, std::string> found_;
};

InstallationPlan Plan() {
  return {.source = Folder(),
          .printer = kPrinterName,
          .make_default = true,
          .data_file = {kDescriptionFile, "first"}};
}

/// A system whose `fails`-th change is refused. Counts from 1.
class FailingSystem : public PrintSystem {
 public:
  explicit FailingSystem(int fails) : left_(fails) {}

 private:
  void Begin(const char* change) override {
    if (--left_ == 0) throw SystemFailure("refused", change, ERROR_ACCESS_DENIED);
  }
  int left_;
};

/// Refuses each change of an installation in turn, until none is left, and expects no traces of the
/// attempts. Returns how many changes it takes.
int RefuseEachChange(const InstallationPlan& plan) {
  const Traces before;
  for (int change = 1;; ++change) {
    FailingSystem failing(change);
    SCOPED_TRACE(change);
    try {
      Installation(failing, plan).Install();
      return change - 1;
    } catch (const SystemFailure&) {
      EXPECT_EQ(Difference(before, Traces()), "");
    }
  }
}

// First of all tests: Wine makes some keys of its own with the first printer.
TEST(Installation, EachCallFails_EverythingIsAsBefore) {
  PrintSystem system;
  Installation(system, Plan()).Install();
  RemoveInstallation(system);
  const Traces before;
  EXPECT_GT(RefuseEachChange(Plan()), 14);
  InstallationPlan update = Plan();
  update.data_file.second = "second";
  update.printer = L"Another printer";
  EXPECT_GT(RefuseEachChange(update), 3);
  // Removal goes on after a failure, and a second one finishes it.
  FailingSystem failing(1);
  EXPECT_THROW(RemoveInstallation(failing), SystemFailure);
  RemoveInstallation(system);
  EXPECT_EQ(Difference(before, Traces()), "");
}

TEST(Installation, NotesOfOthers_AreLeftAlone) {
  PrintSystem system;
  system.WriteNote(L"file ..\\..\\win.ini", L"");
  system.WriteNote(L"something else", L"");
  EXPECT_TRUE(RemoveInstallation(system).empty());
  system.DeleteNote(L"file ..\\..\\win.ini");
  system.DeleteNote(L"something else");
}

/// "6.0.1.0", from a file's version block.
std::wstring VersionOf(const fs::path& file) {
  std::vector<std::byte> block(GetFileVersionInfoSizeW(file.c_str(), nullptr));
  VS_FIXEDFILEINFO* info = nullptr;
  UINT size = 0;
  if (!GetFileVersionInfoW(file.c_str(), 0, static_cast<DWORD>(block.size()), block.data()) ||
      !VerQueryValueW(block.data(), L"\\", reinterpret_cast<void**>(&info), &size)) {
    return L"";
  }
  wchar_t text[32];
  wsprintfW(text, L"%u.%u.%u.%u", HIWORD(info->dwFileVersionMS), LOWORD(info->dwFileVersionMS),
            HIWORD(info->dwFileVersionLS), LOWORD(info->dwFileVersionLS));
  return text;
}

// Windows reads the INF with the same library.
TEST(DriverPackage, Inf_NamesTheBuiltFiles) {
  const std::unique_ptr<void, decltype(&SetupCloseInfFile)> inf(
      SetupOpenInfFileW((Folder() / L"quillo.inf").c_str(), L"Printer", INF_STYLE_WIN4, nullptr),
      SetupCloseInfFile);
  ASSERT_NE(inf.get(), INVALID_HANDLE_VALUE);
  const auto value = [&](const wchar_t* section, const wchar_t* key, DWORD field = 1) {
    INFCONTEXT line;
    wchar_t text[260] = L"";
    if (SetupFindFirstLineW(inf.get(), section, key, &line)) {
      SetupGetStringFieldW(&line, field, text, 260, nullptr);
    }
    return std::wstring(text);
  };
  for (const test::CaseRow& row : test::ReadCases("setup/inf.txt")) {
    const std::wstring section = ToWide(row.fields[0]), key = ToWide(row.fields[1]);
    const auto field = static_cast<DWORD>(std::stoi(row.fields[2]));
    EXPECT_EQ(ToUtf8(value(section.c_str(), key.c_str(), field)), row.fields[3]) << row.place;
  }
  const std::wstring version = value(L"Version", L"DriverVer", 2);
  const std::wstring files = value(L"Install", L"CopyFiles");
  std::vector<std::wstring> copied;
  for (LONG i = 0; i < SetupGetLineCountW(inf.get(), files.c_str()); ++i) {
    INFCONTEXT line;
    wchar_t name[260] = L"";
    SetupGetLineByIndexW(inf.get(), files.c_str(), static_cast<DWORD>(i), &line);
    SetupGetStringFieldW(&line, 1, name, 260, nullptr);
    EXPECT_EQ(VersionOf(Folder() / name), version) << ToUtf8(name);
    EXPECT_EQ(value(L"SourceDisksFiles.amd64", name), L"1") << ToUtf8(name);
    copied.emplace_back(name);
  }
  EXPECT_EQ(copied.size(), 4u);
  for (const wchar_t* key : {L"DriverFile", L"ConfigFile", L"DataFile"}) {
    EXPECT_EQ(std::ranges::count(copied, value(L"Install", key)), 1) << ToUtf8(key);
  }
  InstallationPlan plan;
  plan.source = L"C:\\nowhere";
  plan.as_package = true;
  EXPECT_EQ(MissingFiles(plan).size(), copied.size() + 1);
}

TEST(SetupProgram, CommandLines_GiveCodeAndSentence) {
  for (const test::CaseRow& row : test::ReadCases("setup/command_lines.txt")) {
    SCOPED_TRACE(row.place);
    const auto result =
        RunProgram(test::BuiltFile(ToWide(row.fields[0]).c_str()), ToWide(row.fields[1]));
    EXPECT_EQ(result.exit_code, std::stoi(row.fields[2])) << result.errors;
    const std::string& text = result.exit_code == 0 ? result.output : result.errors;
    EXPECT_NE(text.find(row.fields[3]), std::string::npos) << text;
  }
}

TEST(DocumentNames, BecomeFileNames) {
  test::CheckCases("setup/document_names.txt", [](const std::vector<std::string>& fields) {
    return ToUtf8(FileNameFor(ToWide(fields[0])));
  });
  EXPECT_EQ(FileNameFor(std::wstring(119, L'x') + L"\xD83D\xDE00"
                                                  L"y"),
            std::wstring(119, L'x'));
}

TEST(Resident, OneClientAJob_Bounded) {
  std::vector<DWORD> jobs = {1, 2, 3, 4};
  std::vector<DWORD> started;
  std::map<DWORD, HANDLE> ends;
  Resident resident([&] { return jobs; },
                    [&](DWORD job) {
                      started.push_back(job);
                      if (job == 4) return KernelHandle();
                      ends[job] = CreateEventW(nullptr, TRUE, FALSE, nullptr);
                      return KernelHandle(ends[job]);
                    },
                    2);
  resident.Step();
  resident.Step();
  EXPECT_EQ(started, (std::vector<DWORD>{1, 2}));
  SetEvent(ends[1]);
  resident.Step();
  EXPECT_EQ(started, (std::vector<DWORD>{1, 2, 3}));  // not 1 again
  SetEvent(ends[2]);
  jobs = {3, 4};
  resident.Step();
  EXPECT_EQ(resident.Running(), 1u);
  jobs = {4, 3, 1};  // one that did not start; a new job of an old number
  resident.Step();
  EXPECT_EQ(started, (std::vector<DWORD>{1, 2, 3, 4, 4, 1}));
}

TEST(Resident, OneASession_UntilItIsStopped) {
  const std::wstring client = test::BuiltFile(L"quillo-client.exe");
  const fs::path folder = fs::temp_directory_path() / L"resident";
  fs::create_directories(folder);
  auto first =
      std::async(std::launch::async, [&] { return test::RunProgram(client, L"", folder); });
  const auto is_there = [] {
    return bool{KernelHandle(OpenEventW(SYNCHRONIZE, FALSE, L"Local\\QuilloClientStop"))};
  };
  for (int tries = 0; !is_there() && tries < 100; ++tries) Sleep(100);
  ASSERT_TRUE(is_there());
  EXPECT_EQ(RunProgram(client, L"").exit_code, 0);
  EXPECT_EQ(first.wait_for(std::chrono::seconds(0)), std::future_status::timeout);
  EXPECT_EQ(RunProgram(client, L"--stop").exit_code, 0);
  EXPECT_EQ(first.get().exit_code, 0);
  fs::remove_all(folder);
}

fs::path Documents() {
  wchar_t* path = nullptr;
  SHGetKnownFolderPath(FOLDERID_Documents, KF_FLAG_CREATE, nullptr, &path);
  fs::path folder = path;
  CoTaskMemFree(path);
  return folder;
}

void DrawSample(const fs::path& file) {
  const MetafileDc dc(CreateEnhMetaFileW(nullptr, file.c_str(), nullptr, nullptr));
  Rectangle(dc.Get(), 10, 10, 200, 200);
}

TEST(SetupProgram, InstalledPrinter_TakesADocumentToTheUser) {
  const Traces before;
  const std::wstring setup = test::BuiltFile(L"quillo-setup.exe");
  EXPECT_EQ(RunProgram(setup, L"status").exit_code, 4);
  for (int i = 0; i < 2; ++i) {  // twice is once
    const auto installed = RunProgram(setup, L"install --default");
    ASSERT_EQ(installed.exit_code, 0) << installed.errors;
  }
  const auto status = nlohmann::json::parse(RunProgram(setup, L"status --json").output);
  EXPECT_EQ(status["installed"], true);
  EXPECT_EQ(status["protected_print_mode"], false);
  PrintSystem system;
  EXPECT_EQ(system.DefaultPrinter(), kPrinterName);

  {  // Wine gap: its spooler lists no job, so that a resident client has none to start for.
    PrinterHandle printer;
    ASSERT_TRUE(OpenPrinterW(std::wstring(kPrinterName).data(), printer.Receive(), nullptr));
    wchar_t name[] = L"queued", type[] = L"RAW";
    DOC_INFO_1W document{name, nullptr, type};
    EXPECT_NE(StartDocPrinterW(printer.Get(), 1, reinterpret_cast<BYTE*>(&document)), 0u);
    EXPECT_TRUE(WaitingJobs().empty()) << "a job is listed: print through the resident client";
  }

  // As an application prints: the installed DLL starts the installed client for the job.
  const fs::path driver = system.DriverFolder();
  {
    const Library ui(LoadLibraryW((driver / L"QXUI06X.dll").c_str()));
    ASSERT_TRUE(ui);
    auto* on_event = reinterpret_cast<decltype(&DrvDocumentEvent)>(
        reinterpret_cast<void*>(GetProcAddress(ui.Get(), "DrvDocumentEvent")));
    {  // A job that another client has claimed is left to that one.
      const JobClaim claim(77);
      LONG claimed = 77;
      EXPECT_EQ(on_event(nullptr, nullptr, DOCUMENTEVENT_STARTDOCPOST, sizeof claimed, &claimed, 0,
                         nullptr),
                DOCUMENTEVENT_SUCCESS);
      EXPECT_EQ(RunProgram((driver / L"quillo-client.exe").wstring(), L"--job 77").exit_code, 0);
    }
    LONG job = 1;  // Wine counts jobs by process
    EXPECT_EQ(on_event(nullptr, nullptr, DOCUMENTEVENT_STARTDOCPOST, sizeof job, &job, 0, nullptr),
              DOCUMENTEVENT_SUCCESS)
        << GetLastError();
  }
  const fs::path work = fs::temp_directory_path() / L"quillo setup";
  fs::create_directories(work);
  DrawSample(work / L"a.emf");
  // The print host beside the installed driver loads that one.
  fs::copy_file(Folder() / L"quillo-print.exe", driver / L"quillo-print.exe");
  const fs::path delivered = Documents() / L"Über_1 (2).pdf";
  std::ofstream(Documents() / L"Über_1.pdf") << "mine";
  const auto printed =
      RunProgram((driver / L"quillo-print.exe").wstring(),
                 L"--client absent --no-pdf --document \"Über/1\" --preview 0 -o \"" +
                     (work / L"out").wstring() + L"\" \"" + (work / L"a.emf").wstring() + L"\"");
  EXPECT_EQ(printed.exit_code, 5) << printed.errors;  // its own client took nothing
  for (int tries = 0; !fs::exists(delivered) && tries < 100; ++tries) Sleep(100);
  EXPECT_TRUE(fs::exists(delivered));
  fs::remove(delivered);
  fs::remove(Documents() / L"Über_1.pdf");
  fs::remove_all(work);
  fs::remove(driver / L"quillo-print.exe");

  const auto removed = RunProgram(setup, L"remove");
  EXPECT_EQ(removed.exit_code, 0) << removed.errors;
  EXPECT_EQ(Difference(before, Traces()), "");
}

}  // namespace
}  // namespace quillo::host
