#include "host/client_app/log.h"

#include "base/windows.h"

#include <algorithm>

#include "base/system_owners.h"

namespace quillo::host {

namespace {

constexpr LONGLONG kFull = 1 << 20;  // bytes

}  // namespace

void Log::Write(const std::string& line) const {
  std::error_code ignored;
  std::filesystem::create_directories(file_.parent_path(), ignored);
  // Several clients write: each line in one call, at the end.
  KernelHandle file(CreateFileW(file_.c_str(), FILE_APPEND_DATA,
                                FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file) return;
  SYSTEMTIME now;
  GetLocalTime(&now);
  char start[64];
  const int length =
      wsprintfA(start, "%04u-%02u-%02u %02u:%02u:%02u %u ", now.wYear, now.wMonth, now.wDay,
                now.wHour, now.wMinute, now.wSecond, GetCurrentProcessId());
  std::string text(start, static_cast<size_t>(length));
  text += line;
  // What others have named must not begin a line of its own.
  std::ranges::replace_if(
      text, [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
  text += "\r\n";
  DWORD written = 0;
  WriteFile(file.Get(), text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
  LARGE_INTEGER size{};
  if (!GetFileSizeEx(file.Get(), &size) || size.QuadPart < kFull) return;
  file.Reset();
  std::filesystem::rename(file_, std::filesystem::path(file_) += L".old", ignored);
}

}  // namespace quillo::host
