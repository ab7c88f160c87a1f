#pragma once

#include "base/windows.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "base/system_owners.h"

namespace quillo::host {

/// A program and all that it starts, as one job object: nothing of it outlives this.
class AppProcess {
 public:
  /// Starts the program with these arguments and one more environment variable. Throws
  /// SystemFailure.
  AppProcess(const std::wstring& program, const std::vector<std::wstring>& arguments,
             const wchar_t* variable, const std::wstring& value);
  ~AppProcess();
  AppProcess(const AppProcess&) = delete;
  AppProcess& operator=(const AppProcess&) = delete;

  /// Whether any process of it runs.
  [[nodiscard]] bool IsRunning() const;
  /// Whether a process is one of it.
  [[nodiscard]] bool Contains(DWORD process) const;
  /// Ends all of it.
  void End();

  /// The dialogs that it shows.
  [[nodiscard]] std::vector<HWND> Dialogs() const;

 private:
  KernelHandle job_;
  KernelHandle process_;
};

/// How a command line has an argument, so that the program reads it as it is.
std::wstring QuotedArgument(const std::wstring& argument);

/// The title of a window; it may be that of another program.
std::wstring TitleOf(HWND window);

/// Presses a dialog's OK. False where it has none, or one that is greyed.
bool Confirm(HWND dialog);

}  // namespace quillo::host
