#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace quillo::host::emf {

/// The record types, numbered as the file holds them. (Windows' own names for them are
/// macros.)
enum RecordType : uint32_t {
#define QUILLO_EMF_RECORD(number, name, least_bytes) kEmr##name = number,
#include "host/emf_format/record_list.h"
#undef QUILLO_EMF_RECORD
};

inline constexpr uint32_t kRecordTypeEnd = kEmrCREATECOLORSPACEW + 1;

/// "EMR_POLYGON16", or "record type 250" for a number that names none.
std::string RecordName(uint32_t type);

/// Bytes that a record of this type holds at least, type and size included; 8 for unknown types.
size_t LeastRecordBytes(uint32_t type);

}  // namespace quillo::host::emf
