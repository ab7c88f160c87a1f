#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "base/bytes.h"

// Records travel through a recorder that cannot write them as comments. Once the metafile is
// finished, each of them is unpacked where it stands.
namespace quillo::host::emf {

/// The data of a comment that carries `record`, a whole record. A carried EMR_EXTCREATEPEN needs no
/// object index: it replaces the EMR_CREATEPEN that must follow it, and takes over its index.
std::vector<std::byte> CarryRecord(Bytes record);

/// Unpacks the carried records of a finished metafile in place and corrects its header. A carried
/// pen that no EMR_CREATEPEN follows is dropped. Returns the metafile's new size, which is never
/// above the old one; nothing when the bytes are no whole metafile: they are then of no use.
std::optional<size_t> UnpackCarriedRecords(MutableBytes metafile);

}  // namespace quillo::host::emf
