#pragma once

#include <cstdint>
#include <string>

#include "base/bytes.h"
#include "host/emf_format/record_types.h"

namespace quillo::host::emf {

/// Finds out which records of a metafile draw: its own, or EMF+ records in comments. Looks at the
/// records themselves, as the EMF+ header's statement is not always true.
class DrawingSurvey {
 public:
  /// The file's next record.
  void Take(uint32_t type, Bytes record);

  /// The drawing lies in EMF+ records alone.
  bool EmfPlusOnly() const { return own_ + lent_ == 0 && (plus_ != 0 || announced_only_); }
  /// How many EMF+ records draw what no record of the file itself repeats. In a dual file these
  /// repeat everything.
  uint64_t UnrepeatedEmfPlus() const { return own_ == 0 || announced_only_ ? plus_ : 0; }

 private:
  void TakeEmfPlus(Bytes records);

  uint64_t plus_ = 0;            // EMF+ records that draw
  uint64_t own_ = 0;             // own records that draw independently
  uint64_t lent_ = 0;            // own records that are part of the EMF+ drawing
  bool dc_lent_ = false;         // own records are part of it now
  bool header_seen_ = false;     // of the EMF+ drawing
  bool announced_only_ = false;  // its header: own records do not repeat it
};

/// Describes the damage in an EMR_GDICOMMENT record and the EMF+ records in it; empty if there is
/// none. (Comments are not played, but a file whose EMF+ half is damaged is damaged.)
std::string FindCommentFault(Bytes record);

}  // namespace quillo::host::emf
