#pragma once

#include "base/windows.h"

#include <filesystem>
#include <string>

namespace quillo::test {

/// The path of a shipped file in the build tree that this test program belongs to.
inline std::wstring BuiltFile(const wchar_t* name) {
  wchar_t program[MAX_PATH] = {};
  GetModuleFileNameW(nullptr, program, MAX_PATH);
  return std::filesystem::path(program).parent_path().parent_path() / "bin" / name;
}

}  // namespace quillo::test
