#include "host/base/failure.h"

#include <iterator>

#include "host/base/text.h"

namespace quillo::host {

std::string DescribeError(DWORD error) {
  wchar_t text[512];
  const DWORD length = FormatMessageW(
      FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK,
      nullptr, error, 0, text, static_cast<DWORD>(std::size(text)), nullptr);
  std::string line = ToUtf8({text, length});
  if (!line.empty() && line.back() != ' ') line += ' ';
  return line + "(error " + std::to_string(error) + ")";
}

SystemFailure::SystemFailure(const std::string& what, const std::string& call, DWORD error)
    : std::runtime_error(what + ": " + call + " failed: " + DescribeError(error)) {}

}  // namespace quillo::host
