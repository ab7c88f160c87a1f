#pragma once

#include "base/windows.h"

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "host/app/app_modes.h"
#include "host/app/app_pipe.h"
#include "host/app/app_process.h"
#include "host/engine/driver_module.h"
#include "host/inputs/input.h"
#include "host/printing/options.h"

namespace quillo::host {

/// A program that prints, and what its recorder says.
class AppProgram {
 public:
  /// Starts the program. `options` and `driver` must outlive this. Throws SystemFailure.
  AppProgram(const AppOptions& options, int dpi, const DriverModule& driver);
  ~AppProgram();
  AppProgram(const AppProgram&) = delete;
  AppProgram& operator=(const AppProgram&) = delete;

  struct Document {
    std::wstring name;  // as the program names it
    std::unique_ptr<PrintInput> content;
  };
  /// Waits for the program's next document, of which there can be one at a time: its pages come
  /// while the program draws them. Nothing when there are no more. Throws UnreadableInput when the
  /// program does something else than print, and DriverFailure where it cannot be printed from.
  std::optional<Document> NextDocument();

  /// As the command line has it.
  [[nodiscard]] const std::string& Name() const { return name_; }

 private:
  friend class AppDocument;

  enum class Outcome {
    kRequest,  // in pipe_
    kGone,     // the process that prints has gone, or lets others print
    kEnded,    // no process is left
    kSilent,   // for too long
    kRefused,  // what it sent is no request
  };

  /// Waits until `deadline`, a GetTickCount64; 0: for ever.
  Outcome Next(ULONGLONG deadline);
  /// What may be asked at any time; refuses the rest. `surface`: of an open document, or null.
  /// Throws DriverFailure on a Wine that cannot be recorded.
  void AnswerQuestion(const app::Request& request, SURFOBJ* surface);
  void AnswerEscape(const app::Request& request, SURFOBJ* surface);
  /// A device of the request's mode, with its surface; null where the driver refuses it.
  [[nodiscard]] std::unique_ptr<PrintDevice> MakeDevice(const app::Request& request) const;
  /// "; it shows the dialog "Print", ...", for the end of a sentence; empty without one that is
  /// hidden.
  [[nodiscard]] std::string HiddenDialog() const;
  void ConfirmDialogs();
  /// "crashed", "ended": how the process that printed went.
  [[nodiscard]] std::string HowItWent() const;
  [[nodiscard]] ULONGLONG Deadline(DWORD milliseconds) const;

  const AppOptions& options_;
  const std::string name_;
  const AppSheet sheet_;
  const DriverModule& driver_;
  const bool seen_;      // there is a display
  const DWORD silence_;  // the longest, milliseconds; 0: any
  std::filesystem::path page_file_;
  PrinterHandle printer_;
  KernelHandle client_;  // the process that printed last
  AppPipe pipe_;
  AppProcess process_;
  bool has_printed_ = false;
  bool given_up_ = false;              // it hangs, or sends what no recorder does
  ULONGLONG watched_ = 0;              // when dialogs were looked for
  std::map<HWND, ULONGLONG> pressed_;  // when OK was, last
};

}  // namespace quillo::host
