#pragma once

#include <cstdint>
#include <string>

#include "base/bytes.h"
#include "host/emf_format/record_types.h"

namespace quillo::host::emf {

/// Which records of a metafile draw: its own, or EMF+ records in comments. What the EMF+ header
/// says of it is not always true, so the records themselves are asked.
class DrawingSurvey {
 public:
  /// The file's next record.
  void Take(uint32_t type, Bytes record);

  /// The drawing lies in EMF+ records alone.
  bool EmfPlusOnly() const { return own_ + lent_ == 0 && (plus_ != 0 || announced_only_); }
  /// EMF+ records that draw what none of the file's own records draws again. In a dual file these
  /// draw everything.
  uint64_t UnrepeatedEmfPlus() const { return own_ == 0 || announced_only_ ? plus_ : 0; }

 private:
  void TakeEmfPlus(Bytes records);

  uint64_t plus_ = 0;            // EMF+ records that draw
  uint64_t own_ = 0;             // own records that draw without them
  uint64_t lent_ = 0;            // own records that are part of the EMF+ drawing
  bool dc_lent_ = false;         // own records have a part in it now
  bool header_seen_ = false;     // of the EMF+ drawing
  bool announced_only_ = false;  // it says that the file's own records do not repeat it
};

/// What is damaged in an EMR_GDICOMMENT record and the EMF+ records in it; empty: nothing.
/// (Comments are not played. But a file whose EMF+ half is damaged is damaged.)
std::string FindCommentFault(Bytes record);

}  // namespace quillo::host::emf
