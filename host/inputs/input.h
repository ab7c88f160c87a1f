#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "config/device_mode/device_mode.h"
#include "host/engine/font_use.h"
#include "host/engine/graphics.h"
#include "host/engine/print_session.h"

namespace quillo::host {

/// A file that cannot be printed. The message completes a sentence that begins with its name: "is
/// empty".
class UnreadableInput : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// How inputs are drawn onto a page. Pages that a program has laid out for the printer are not
/// placed.
struct PageSetup {
  int dpi;   // of the page
  bool fit;  // into the printable area; else at their own size
  GlyphOrder glyph_order;
};

/// How the drawing of one page came out. Whatever the page lacks is a fault, except records that
/// have no place on it; LossesOf (report.h) makes one list of it all.
struct DrawResult {
  std::map<std::string, uint64_t> not_carried;  // records that are not on the page, by name
  std::vector<std::string> faults;              // what the page lacks and why; phrases
  std::vector<std::string> remarks;             // what is odd but costs the page nothing
  std::vector<std::string> substitutions;       // what replaces what the input asks for
  std::map<std::wstring, FontUse> fonts;        // by the face name that the input asks for
};

/// How often a document is to be printed, for whoever puts it on paper.
struct Copies {
  int count = 1;
  bool collated = false;  // one whole copy after the other
};

/// An opened input: pages that are drawn one after the other.
class PrintInput {
 public:
  virtual ~PrintInput() = default;
  /// Called once the input's job has begun, before its first page; the session lasts longer than
  /// the pages.
  virtual void JobStarted(DWORD /*job_id*/, const PrintSession& /*session*/) {}
  /// Prepares the next page; false after the last. Throws UnreadableInput.
  virtual bool PreparePage() = 0;
  /// Draws the prepared page. Throws UnreadableInput, and what Graphics does.
  virtual DrawResult DrawPage(Graphics& canvas, const PageSetup& setup) = 0;
  /// The device mode of the prepared page, before the first page of the next one; null: the command
  /// line has its sheet.
  [[nodiscard]] virtual const DeviceMode* Mode() const { return nullptr; }
  [[nodiscard]] virtual Copies WantedCopies() const { return {}; }
};

/// Opens a file of any kind that can be printed, recognised by its content. Throws UnreadableInput.
std::unique_ptr<PrintInput> OpenInput(const std::filesystem::path& path);

}  // namespace quillo::host
