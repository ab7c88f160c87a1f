#include "host/emf_format/comment.h"

#include <algorithm>
#include <cstdio>

#include "host/emf_format/payload_reader.h"

namespace quillo::host::emf {

namespace {

constexpr uint32_t kEmfPlus = 0x2B464D45;  // "EMF+"
constexpr uint32_t kRecordHeader = 12;     // type, flags, size, size of the data

// Types of EMF+ records.
constexpr uint16_t kHeader = 0x4001;  // the first
constexpr uint16_t kGetDc = 0x4004;
constexpr uint16_t kFirstDrawing = 0x4009;  // Clear
constexpr uint16_t kLastDrawing = 0x401C;   // DrawString
constexpr uint16_t kDrawDriverString = 0x4036;
constexpr uint16_t kStrokeFillPath = 0x4037;
constexpr uint16_t kLast = 0x403A;

constexpr uint16_t kDual = 1;  // flag of the header: the file can also be drawn without EMF+

constexpr bool EmfPlusDraws(uint16_t type) {
  return (type >= kFirstDrawing && type <= kLastDrawing) || type == kDrawDriverString ||
         type == kStrokeFillPath;
}

struct TypeRange {
  uint32_t first, last;
};

constexpr TypeRange kDrawingTypes[] = {{kEmrPOLYBEZIER, kEmrPOLYPOLYGON},
                                       {kEmrSETPIXELV, kEmrSETPIXELV},
                                       {kEmrANGLEARC, kEmrPIE},
                                       {kEmrEXTFLOODFILL, kEmrPOLYDRAW},
                                       {kEmrFILLPATH, kEmrSTROKEPATH},
                                       {kEmrFILLRGN, kEmrPAINTRGN},
                                       {kEmrBITBLT, kEmrSTRETCHDIBITS},
                                       {kEmrEXTTEXTOUTA, kEmrPOLYDRAW16},
                                       {kEmrPOLYTEXTOUTA, kEmrPOLYTEXTOUTW},
                                       {kEmrSMALLTEXTOUT, kEmrSMALLTEXTOUT},
                                       {kEmrALPHABLEND, kEmrALPHABLEND},
                                       {kEmrTRANSPARENTBLT, kEmrTRANSPARENTBLT},
                                       {kEmrGRADIENTFILL, kEmrGRADIENTFILL}};

bool Draws(uint32_t type, Bytes record) {
  // EMF+ writers add a blit that changes nothing, for its bounds.
  constexpr size_t kRop = 40;
  constexpr uint32_t kNoOperation = 0x00AA0029;
  if (type == kEmrBITBLT && LoadOrZero<uint32_t>(record, kRop) == kNoOperation) return false;
  return std::ranges::any_of(
      kDrawingTypes, [type](TypeRange range) { return type >= range.first && type <= range.last; });
}

/// The EMF+ records of a comment; empty when it is a comment of another kind.
Bytes EmfPlusRecords(PayloadReader& record) {
  const auto size = record.Read<uint32_t>();
  const Bytes data = record.Slice(12, size);
  if (!record.ok() || data.size() < 4 || LoadOrZero<uint32_t>(data) != kEmfPlus) return {};
  return data.subspan(4);
}

}  // namespace

void DrawingSurvey::Take(uint32_t type, Bytes record) {
  if (type == kEmrGDICOMMENT) {
    PayloadReader reader(record);
    TakeEmfPlus(EmfPlusRecords(reader));
  } else if (Draws(type, record)) {
    ++(dc_lent_ ? lent_ : own_);
  }
}

void DrawingSurvey::TakeEmfPlus(Bytes records) {
  while (records.size() >= kRecordHeader) {
    const auto type = LoadOrZero<uint16_t>(records);
    const auto size = LoadOrZero<uint32_t>(records, 4);
    dc_lent_ = type == kGetDc;
    if (EmfPlusDraws(type)) ++plus_;
    if (type == kHeader && !header_seen_) {
      header_seen_ = true;
      announced_only_ = (LoadOrZero<uint16_t>(records, 2) & kDual) == 0;
    }
    if (size < kRecordHeader || size > records.size()) return;
    records = records.subspan(size);
  }
}

std::string FindCommentFault(Bytes record) {
  PayloadReader reader(record);
  Bytes records = EmfPlusRecords(reader);
  if (!reader.ok()) return "its data extends past the record";
  while (!records.empty()) {
    const auto type = LoadOrZero<uint16_t>(records);
    const auto size = LoadOrZero<uint32_t>(records, 4);
    const auto data_size = LoadOrZero<uint32_t>(records, 8);
    char what[80];
    if (type < kHeader || type > kLast) {
      snprintf(what, sizeof(what), "unknown EMF+ record type 0x%04X", type);
      return what;
    }
    if (size < kRecordHeader || size > records.size() || data_size > size - kRecordHeader) {
      snprintf(what, sizeof(what), "its EMF+ record of type 0x%04X has a wrong size", type);
      return what;
    }
    records = records.subspan(size);
  }
  return {};
}

}  // namespace quillo::host::emf
