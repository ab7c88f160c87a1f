#include "host/printing/console.h"

#include "host/base/text.h"

namespace quillo::host {

namespace {

bool IsTerminal(HANDLE stream) {
  DWORD mode = 0;
  return GetConsoleMode(stream, &mode) != FALSE;
}

constexpr size_t kTerminalWidth = 79;

}  // namespace

Console::Console(bool quiet, const char* program)
    : program_(program), quiet_(quiet), terminal_(IsTerminal(GetStdHandle(STD_OUTPUT_HANDLE))) {}

void Console::Write(std::string_view text, DWORD stream) {
  const HANDLE handle = GetStdHandle(stream);
  DWORD written = 0;
  if (IsTerminal(handle)) {
    const std::wstring wide = ToWide(text);
    WriteConsoleW(handle, wide.data(), static_cast<DWORD>(wide.size()), &written, nullptr);
  } else {
    WriteFile(handle, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
  }
}

void Console::Problem(const std::string& sentence) {
  EraseProgress();
  Write(program_ + (": " + sentence + "\n"), STD_ERROR_HANDLE);
}

void Console::PageBegins(const std::string& line) {
  if (quiet_ || !terminal_) return;
  Write(std::string_view(line).substr(0, kTerminalWidth));
  progress_shown_ = true;
}

void Console::PageDone(const std::string& line) {
  EraseProgress();
  if (!quiet_) Write(line + "\n");
}

void Console::EraseProgress() {
  if (!progress_shown_) return;
  Write("\r" + std::string(kTerminalWidth, ' ') + "\r");
  progress_shown_ = false;
}

}  // namespace quillo::host
