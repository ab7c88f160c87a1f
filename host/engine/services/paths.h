#pragma once

#include "base/ddi.h"

#include <cstddef>
#include <vector>

namespace quillo::host {

/// One run of a path, as PATHOBJ_bEnum returns it.
struct PathRun {
  FLONG flags = 0;  // PD_*
  std::vector<POINTFIX> points;
};

/// A path with the public PATHOBJ in front. The runs are returned as they are, well formed or not.
class PathObject : public PATHOBJ {
 public:
  explicit PathObject(std::vector<PathRun> runs);

  const std::vector<PathRun>& Runs() const { return runs_; }

  void RestartEnumeration() { next_ = 0; }
  /// Returns the next run in `data`; false when it is the last one. Without any run the data is
  /// empty.
  bool Enumerate(PATHDATA& data);
  /// The bounding rectangle of all points; zeros without any.
  RECTFX Bounds() const;

 private:
  std::vector<PathRun> runs_;
  size_t next_ = 0;  // run of the next enumeration step
};

/// How many paths a driver got from the engine and has not deleted.
size_t LivePathCount();

/// A path that is the driver's to delete (EngDeletePath).
PATHOBJ* NewDriverPath(std::vector<PathRun> runs);

}  // namespace quillo::host
