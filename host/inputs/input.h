#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/engine/font_use.h"
#include "host/engine/graphics.h"

namespace quillo::host {

/// A file that is not printed. The message completes a sentence that begins with its name: "is
/// empty".
class UnreadableInput : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// How pictures go onto a page.
struct PageSetup {
  int dpi;   // of the page
  bool fit;  // into the printable area; else at their own size
  GlyphOrder glyph_order;
};

/// What became of one page's drawing. What the page lacks for any other reason than a record that
/// has no place on it is a fault; report.h makes a page's losses of it all.
struct DrawResult {
  std::map<std::string, uint64_t> not_carried;  // records that are not on the page, by name
  std::vector<std::string> faults;              // what the page lacks and why, a phrase each
  std::vector<std::string> remarks;             // what is odd but costs the page nothing, likewise
  std::vector<std::string> substitutions;       // what stands in for what was asked for, likewise
  std::map<std::wstring, FontUse> fonts;        // by the face name that is asked for
};

/// An opened input: pages that are drawn one after the other.
class PrintInput {
 public:
  virtual ~PrintInput() = default;
  /// Gets the next page ready; false when there is none. Throws UnreadableInput.
  virtual bool PreparePage() = 0;
  /// Draws the page that is ready.
  virtual DrawResult DrawPage(Graphics& canvas, const PageSetup& setup) = 0;
};

/// Opens a file of any kind that is printed; its content tells the kind. Throws UnreadableInput.
std::unique_ptr<PrintInput> OpenInput(const std::filesystem::path& path);

}  // namespace quillo::host
