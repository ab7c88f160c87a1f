#pragma once

#include <string>

#include "base/bytes.h"

namespace quillo::host::emf {

/// Whether an EMR_GDICOMMENT record begins a drawing that lies in EMF+ comments alone.
bool AnnouncesEmfPlusOnly(Bytes record);

/// What is damaged in an EMR_GDICOMMENT record and the EMF+ records in it; empty: nothing.
/// (Comments are not played. But a file whose EMF+ half is damaged is damaged.)
std::string FindCommentFault(Bytes record);

}  // namespace quillo::host::emf
