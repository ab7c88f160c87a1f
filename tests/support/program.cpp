#include "support/program.h"

#include "base/windows.h"

#include <fstream>
#include <gtest/gtest.h>

#include "base/system_owners.h"

namespace quillo::test {

namespace fs = std::filesystem;

std::string ReadText(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

namespace {

KernelHandle MakeInheritedFile(const fs::path& path) {
  SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
  // Shared, since what the command starts may outlive it with this handle.
  constexpr DWORD kShared = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  return KernelHandle(CreateFileW(path.c_str(), GENERIC_WRITE, kShared, &inherited, CREATE_ALWAYS,
                                  FILE_ATTRIBUTE_NORMAL, nullptr));
}

}  // namespace

ProgramResult RunProgram(const std::wstring& program, const std::wstring& arguments,
                         const fs::path& folder) {
  const fs::path output = folder / L"output";
  const fs::path errors = folder / L"errors";
  KernelHandle output_file = MakeInheritedFile(output);
  KernelHandle errors_file = MakeInheritedFile(errors);
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdOutput = output_file.Get();
  startup.hStdError = errors_file.Get();
  PROCESS_INFORMATION info{};
  std::wstring command = L"\"" + program + L"\" " + arguments;
  EXPECT_TRUE(CreateProcessW(program.c_str(), command.data(), nullptr, nullptr, TRUE, 0, nullptr,
                             nullptr, &startup, &info));
  const KernelHandle process(info.hProcess);
  const KernelHandle thread(info.hThread);
  output_file.Reset();
  errors_file.Reset();
  if (WaitForSingleObject(process.Get(), 120'000) != WAIT_OBJECT_0) {
    ADD_FAILURE() << "the program hangs";
    TerminateProcess(process.Get(), 1);
  }
  DWORD exit_code = 0;
  GetExitCodeProcess(process.Get(), &exit_code);
  return {static_cast<int>(exit_code), ReadText(output), ReadText(errors)};
}

}  // namespace quillo::test
