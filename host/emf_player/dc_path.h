#pragma once

#include <utility>

#include "host/engine/path.h"

namespace quillo::host::emf {

/// A path that one record after the other adds to.
struct GrowingPath {
  Path path;
  bool figure_open = false;  // whether the next record continues the last figure

  void CloseFigure() {
    if (figure_open) path.CloseFigure();
    figure_open = false;
  }
};

/// The path of a DC: records add to it between Begin and End; afterwards it waits to be taken.
class DcPath {
 public:
  bool IsOpen() const { return open_; }
  void Begin() { Reset(true); }
  void End() { open_ = false; }
  void Abort() { Reset(false); }
  /// The path, open or finished; the DC has none afterwards.
  Path Take() {
    open_ = false;
    return std::exchange(contents_, GrowingPath()).path;
  }

  GrowingPath& Contents() { return contents_; }
  /// What a record that continues from the current position adds to: this path while it is open,
  /// else `alone`.
  GrowingPath& OpenOr(GrowingPath& alone) { return open_ ? contents_ : alone; }

 private:
  void Reset(bool open) {
    contents_ = GrowingPath();
    open_ = open;
  }

  GrowingPath contents_;
  bool open_ = false;
};

}  // namespace quillo::host::emf
