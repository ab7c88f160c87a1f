#pragma once

#include <memory>

#include "host/app/app_program.h"
#include "host/inputs/input.h"

namespace quillo::host {

/// A document that a program prints: its pages while they come. The program waits for each until
/// the driver has it.
class AppDocument : public PrintInput {
 public:
  /// Of the program's last request, which waits for its answer.
  AppDocument(AppProgram& program, const AppMode& mode);
  ~AppDocument() override;

  void JobStarted(DWORD job_id, const PrintSession& session) override;
  /// Throws UnreadableInput also where the program goes or falls silent before the document's end.
  bool PreparePage() override;
  DrawResult DrawPage(Graphics& canvas, const PageSetup& setup) override;
  [[nodiscard]] const DeviceMode* Mode() const override { return &mode_.mode; }
  [[nodiscard]] Copies WantedCopies() const override { return {mode_.copies, mode_.collated}; }

 private:
  void Answer(int32_t result, std::span<const std::byte> data = {});
  void TakePage(const app::Request& request);
  [[noreturn]] void Fail(const std::string& what) const;

  AppProgram& program_;
  const PrintSession* session_ = nullptr;
  AppMode mode_;  // of the page
  std::unique_ptr<PrintInput> page_;
  int pages_ = 0;
  bool waits_ = true;  // the program, for an answer
};

}  // namespace quillo::host
