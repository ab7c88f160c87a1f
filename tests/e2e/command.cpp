#include "e2e/command.h"

#include "base/windows.h"

#include <fstream>
#include <gtest/gtest.h>
#include <iterator>

#include "base/system_owners.h"
#include "support/built_file.h"

namespace quillo::test {

namespace {

namespace fs = std::filesystem;

std::string ReadText(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

KernelHandle MakeInheritedFile(const fs::path& path) {
  SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
  return KernelHandle(CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited,
                                  CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
}

}  // namespace

CommandResult RunPrint(const std::wstring& arguments) {
  const fs::path output = fs::temp_directory_path() / L"quillo print output";
  const fs::path errors = fs::temp_directory_path() / L"quillo print errors";
  KernelHandle output_file = MakeInheritedFile(output);
  KernelHandle errors_file = MakeInheritedFile(errors);
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdOutput = output_file.Get();
  startup.hStdError = errors_file.Get();
  PROCESS_INFORMATION info{};
  const std::wstring program = BuiltFile(L"quillo-print.exe");
  std::wstring command = L"\"" + program + L"\" " + arguments;
  CommandResult result;
  if (!CreateProcessW(program.c_str(), command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                      &startup, &info)) {
    ADD_FAILURE() << "cannot start the print command";
    return result;
  }
  const KernelHandle process(info.hProcess);
  const KernelHandle thread(info.hThread);
  output_file.Reset();
  errors_file.Reset();
  if (WaitForSingleObject(process.Get(), 120'000) != WAIT_OBJECT_0) {
    ADD_FAILURE() << "the print command hangs";
    TerminateProcess(process.Get(), 1);
  }
  DWORD exit_code = 0;
  GetExitCodeProcess(process.Get(), &exit_code);
  result = {static_cast<int>(exit_code), ReadText(output), ReadText(errors)};
  fs::remove(output);
  fs::remove(errors);
  return result;
}

nlohmann::ordered_json ReadJobReport(const fs::path& folder) {
  std::ifstream file(folder / L"job.json", std::ios::binary);
  return file ? nlohmann::ordered_json::parse(file) : nlohmann::ordered_json();
}

}  // namespace quillo::test
