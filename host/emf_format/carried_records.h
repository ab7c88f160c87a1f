#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "base/bytes.h"

// Records that a recorder cannot write are put into its metafile as comments. In the finished
// metafile each of them is unpacked in place.
namespace quillo::host::emf {

/// The data of a comment that carries `record`, a whole record. A carried EMR_EXTCREATEPEN needs no
/// object index: it replaces the EMR_CREATEPEN that must follow it, and takes its index.
std::vector<std::byte> CarryRecord(Bytes record);

/// Unpacks the carried records of a finished metafile in place and corrects its header. Drops a
/// carried pen that no EMR_CREATEPEN follows. Returns the metafile's new size in bytes, which is at
/// most the old one. Nothing when the bytes are not a whole metafile; they are then unusable.
std::optional<size_t> UnpackCarriedRecords(MutableBytes metafile);

}  // namespace quillo::host::emf
