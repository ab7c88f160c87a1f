#include "host/emf_format/record_types.h"

#include <algorithm>
#include <iterator>

namespace quillo::host::emf {

namespace {

struct TypeInfo {
  uint32_t number;
  const char* name;
  size_t min_bytes;
};

constexpr TypeInfo kTypes[] = {
#define QUILLO_EMF_RECORD(number, name, min_bytes) {number, "EMR_" #name, min_bytes},
#include "host/emf_format/record_list.h"
#undef QUILLO_EMF_RECORD
};

constexpr bool NumbersAscend() {
  for (size_t i = 1; i < std::size(kTypes); ++i) {
    if (kTypes[i - 1].number >= kTypes[i].number) return false;
  }
  return true;
}
// Numbers 69 and 117 name no record.
static_assert(std::size(kTypes) == kRecordTypeEnd - 3 && NumbersAscend());

const TypeInfo* FindType(uint32_t type) {
  const auto* info = std::ranges::lower_bound(kTypes, type, {}, &TypeInfo::number);
  return info != std::end(kTypes) && info->number == type ? info : nullptr;
}

}  // namespace

bool IsRecordType(uint32_t number) { return FindType(number) != nullptr; }

std::string RecordName(uint32_t type) {
  const TypeInfo* info = FindType(type);
  return info != nullptr ? info->name : "record type " + std::to_string(type);
}

size_t MinRecordBytes(uint32_t type) {
  const TypeInfo* info = FindType(type);
  return info != nullptr ? info->min_bytes : 8;
}

}  // namespace quillo::host::emf
