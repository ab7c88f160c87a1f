#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace quillo::host::emf {

/// The record types by their numbers in the file. (Windows' own names for them are macros.)
enum RecordType : uint32_t {
#define QUILLO_EMF_RECORD(number, name, min_bytes) kEmr##name = number,
#include "host/emf_format/record_list.h"
#undef QUILLO_EMF_RECORD
};

inline constexpr uint32_t kRecordTypeEnd = kEmrCREATECOLORSPACEW + 1;

/// Whether a record type has this number.
bool IsRecordType(uint32_t number);

/// "EMR_POLYGON16", or "record type 250" for an unknown number.
std::string RecordName(uint32_t type);

/// The smallest size of a record of this type, in bytes with type and size; 8 for unknown types.
size_t MinRecordBytes(uint32_t type);

}  // namespace quillo::host::emf
