#include "host/app/app_process.h"

#include <iterator>

#include "host/base/failure.h"
#include "host/base/text.h"

namespace quillo::host {

namespace {

constexpr DWORD kEndLimit = 5000;  // milliseconds
constexpr UINT kEnded = 1;         // exit code of what is ended

/// A variable of this process's environment, for the length of a scope.
class VariableScope {
 public:
  VariableScope(const wchar_t* name, const std::wstring& value) : name_(name) {
    SetEnvironmentVariableW(name, value.c_str());
  }
  ~VariableScope() { SetEnvironmentVariableW(name_, nullptr); }
  VariableScope(const VariableScope&) = delete;
  VariableScope& operator=(const VariableScope&) = delete;

 private:
  const wchar_t* name_;
};

/// Finds the program as CreateProcess would. Throws SystemFailure when it is not there, or is no
/// program that the recorder can be loaded into: Wine would start one of the host system, too.
std::wstring FindProgram(const std::wstring& name) {
  std::wstring path(32'768, L'\0');
  const DWORD length = SearchPathW(nullptr, name.c_str(), L".exe", static_cast<DWORD>(path.size()),
                                   path.data(), nullptr);
  if (length == 0 || length >= path.size()) {
    throw SystemFailure("cannot find " + ToUtf8(name), "SearchPath");
  }
  path.resize(length);
  DWORD type = 0;
  if (!GetBinaryTypeW(path.c_str(), &type) || type != SCS_64BIT_BINARY) {
    throw SystemFailure(ToUtf8(name) + " is not a Windows program for 64 bits", "GetBinaryType",
                        ERROR_BAD_EXE_FORMAT);
  }
  return path;
}

KernelHandle MakeJob() {
  KernelHandle job(CreateJobObjectW(nullptr, nullptr));
  JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
  limits.BasicLimitInformation.LimitFlags =
      JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE | JOB_OBJECT_LIMIT_DIE_ON_UNHANDLED_EXCEPTION;
  if (!job || !SetInformationJobObject(job.Get(), JobObjectExtendedLimitInformation, &limits,
                                       sizeof limits)) {
    throw SystemFailure("cannot watch over the program", "CreateJobObject");
  }
  return job;
}

}  // namespace

std::wstring QuotedArgument(const std::wstring& argument) {
  std::wstring quoted = L"\"";
  size_t backslashes = 0;
  for (const wchar_t c : argument) {
    // Backslashes stand for themselves, except before a quote.
    if (c == L'"') quoted.append(backslashes + 1, L'\\');
    backslashes = c == L'\\' ? backslashes + 1 : 0;
    quoted += c;
  }
  return quoted.append(backslashes, L'\\') + L"\"";
}

AppProcess::AppProcess(const std::wstring& program, const std::vector<std::wstring>& arguments,
                       const wchar_t* variable, const std::wstring& value)
    : job_(MakeJob()) {
  const std::wstring file = FindProgram(program);
  std::wstring command = QuotedArgument(program);
  for (const std::wstring& argument : arguments) {
    // Some programs look for their switches in the command line as it is.
    const bool plain = !argument.empty() && argument.find_first_of(L" \t\"") == std::wstring::npos;
    command += L" " + (plain ? argument : QuotedArgument(argument));
  }
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION info{};
  const VariableScope scope(variable, value);
  if (!CreateProcessW(file.c_str(), command.data(), nullptr, nullptr, FALSE, CREATE_SUSPENDED,
                      nullptr, nullptr, &startup, &info)) {
    throw SystemFailure("cannot start " + ToUtf8(program), "CreateProcess");
  }
  process_.Reset(info.hProcess);
  const KernelHandle thread(info.hThread);
  if (!AssignProcessToJobObject(job_.Get(), process_.Get()) ||
      ResumeThread(thread.Get()) == static_cast<DWORD>(-1)) {
    const DWORD error = GetLastError();
    TerminateProcess(process_.Get(), kEnded);
    throw SystemFailure("cannot watch over " + ToUtf8(program), "AssignProcessToJobObject", error);
  }
}

AppProcess::~AppProcess() { End(); }

bool AppProcess::IsRunning() const {
  JOBOBJECT_BASIC_ACCOUNTING_INFORMATION counts{};
  if (!QueryInformationJobObject(job_.Get(), JobObjectBasicAccountingInformation, &counts,
                                 sizeof counts, nullptr)) {
    return WaitForSingleObject(process_.Get(), 0) == WAIT_TIMEOUT;
  }
  return counts.ActiveProcesses != 0;
}

bool AppProcess::Contains(DWORD process) const {
  const KernelHandle handle(OpenProcess(PROCESS_QUERY_INFORMATION, FALSE, process));
  BOOL contains = FALSE;
  return handle && IsProcessInJob(handle.Get(), job_.Get(), &contains) && contains;
}

void AppProcess::End() {
  TerminateJobObject(job_.Get(), kEnded);
  const ULONGLONG begin = GetTickCount64();
  while (IsRunning() && GetTickCount64() - begin < kEndLimit) Sleep(10);
}

std::vector<HWND> AppProcess::Dialogs() const {
  struct Search {
    const AppProcess& program;
    std::vector<HWND> found;
  };
  Search search{*this, {}};
  EnumWindows(
      [](HWND window, LPARAM context) {
        auto& [program, found] = *reinterpret_cast<Search*>(context);
        wchar_t name[16] = {};
        DWORD process = 0;
        GetWindowThreadProcessId(window, &process);
        if (IsWindowVisible(window) && GetClassNameW(window, name, std::size(name)) != 0 &&
            std::wstring_view(name) == L"#32770" && program.Contains(process)) {
          found.push_back(window);
        }
        return TRUE;
      },
      reinterpret_cast<LPARAM>(&search));
  return search.found;
}

std::wstring TitleOf(HWND window) {
  // Asks the window manager, not the program, which may hang.
  wchar_t title[256] = {};
  return {title, static_cast<size_t>(InternalGetWindowText(window, title, std::size(title)))};
}

bool Confirm(HWND dialog) {
  const HWND button = GetDlgItem(dialog, IDOK);
  return button != nullptr && IsWindowVisible(button) && IsWindowEnabled(button) &&
         PostMessageW(dialog, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED),
                      reinterpret_cast<LPARAM>(button));
}

}  // namespace quillo::host
