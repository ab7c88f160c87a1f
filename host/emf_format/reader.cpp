#include "host/emf_format/reader.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "base/arithmetic.h"
#include "host/emf_format/comment.h"
#include "host/emf_format/payload_reader.h"
#include "host/emf_format/record_types.h"

namespace quillo::host::emf {

namespace {

constexpr uint32_t kSignature = 0x464D4520;        // " EMF"
constexpr uint32_t kPlaceableWmfKey = 0x9AC6CDD7;  // of a placeable Windows metafile
constexpr size_t kHeaderBytes = 88;  // the shortest form; the longer ones append to it

struct Kind {
  const char* magic;
  size_t size;
  const char* name;
};

// What users pass by mistake.
constexpr Kind kOtherKinds[] = {
    {"%PDF", 4, "a PDF document"},
    {"\x89PNG", 4, "a PNG picture"},
    {"\xFF\xD8\xFF", 3, "a JPEG picture"},
    {"GIF8", 4, "a GIF picture"},
    {"BM", 2, "a bitmap"},
    {"II*\0", 4, "a TIFF picture"},
    {"MM\0*", 4, "a TIFF picture"},
    {"PK\3\4", 4, "a ZIP archive or office document"},
    {"\x1F\x8B", 2, "compressed with gzip (decompress it first)"},
    {"%!PS", 4, "a PostScript program"},
    {"<svg", 4, "an SVG drawing"},
    {"<?xml", 5, "an XML document"},
    {"\1\0\x09\0", 4, "a Windows metafile (WMF)"},
    {"\2\0\x09\0", 4, "a Windows metafile (WMF)"},
};

/// A sentence about bytes that do not begin with a metafile's header.
std::string NameOtherKind(Bytes file) {
  if (file.empty()) return "is empty";
  if (LoadOrZero<uint32_t>(file) == kPlaceableWmfKey) {
    return "is a placeable Windows metafile (WMF), not an enhanced metafile";
  }
  for (const Kind& kind : kOtherKinds) {
    if (file.size() >= kind.size && std::memcmp(file.data(), kind.magic, kind.size) == 0) {
      return std::string("is ") + kind.name + ", not an enhanced metafile";
    }
  }
  return "is not an enhanced metafile: it does not begin with EMR_HEADER";
}

}  // namespace

std::string Describe(const MetafileFault& fault) {
  return "record " + std::to_string(fault.record_index) + " (" + fault.record_name +
         "): " + fault.what;
}

MetafileReader::MetafileReader(Bytes file) : file_(file) {
  ReadHeader();
  RefuseEmfPlusOnly();
}

void MetafileReader::ReadHeader() {
  if (LoadOrZero<uint32_t>(file_) != kEmrHEADER ||
      (file_.size() >= 44 && LoadOrZero<uint32_t>(file_, 40) != kSignature)) {
    throw UnreadableMetafile(NameOtherKind(file_));
  }
  const auto size = LoadOrZero<uint32_t>(file_, 4);
  if (file_.size() < kHeaderBytes || size < kHeaderBytes || size > file_.size()) {
    throw UnreadableMetafile("is damaged: record 1 (EMR_HEADER) declares " + std::to_string(size) +
                             " bytes, the file holds " + std::to_string(file_.size()));
  }

  PayloadReader reader(file_.first(size));
  header_.bounds = reader.Read<RectL>();
  header_.frame = reader.Read<RectL>();
  reader.Skip(8);  // signature, version
  const auto declared_bytes = reader.Read<uint32_t>();
  header_.record_count = reader.Read<uint32_t>();
  header_.handle_count = reader.Read<uint16_t>();
  reader.Skip(2);
  const auto description_length = reader.Read<uint32_t>();
  const auto description_offset = reader.Read<uint32_t>();
  reader.Skip(4);  // palette entries
  header_.device = reader.Read<SizeL>();
  header_.millimetres = reader.Read<SizeL>();
  if (header_.device.x <= 0 || header_.device.y <= 0 || header_.millimetres.x <= 0 ||
      header_.millimetres.y <= 0) {
    throw UnreadableMetafile("is damaged: record 1 (EMR_HEADER) has a reference device of no size");
  }

  const Record header_record{1, kEmrHEADER, file_.first(size)};
  if (description_length != 0) {
    const size_t bytes = size_t{description_length} * sizeof(char16_t);
    if (RangeFits(size, description_offset, bytes)) {
      header_.description.resize(description_length);
      std::memcpy(header_.description.data(), file_.data() + description_offset, bytes);
    } else {
      Remark(header_record, "the description lies outside the record");
    }
  }
  if (declared_bytes != file_.size()) {
    Remark(header_record, "declares " + std::to_string(declared_bytes) + " bytes, the file holds " +
                              std::to_string(file_.size()));
  }
}

void MetafileReader::RefuseEmfPlusOnly() {
  DrawingSurvey survey;
  for (size_t at = 0; file_.size() - at >= 8;) {
    const auto type = LoadOrZero<uint32_t>(file_, at);
    const auto size = LoadOrZero<uint32_t>(file_, at + 4);
    if (size < 8 || size > file_.size() - at || type == kEmrEOF) break;
    survey.Take(type, file_.subspan(at, size));
    at += size;
  }
  if (survey.EmfPlusOnly()) {
    throw UnreadableMetafile(
        "holds its drawing as EMF+ records only, which are not printed; save it as EMF or as "
        "\"EMF+ dual\"");
  }
  unrepeated_emf_plus_ = survey.UnrepeatedEmfPlus();
}

std::optional<Record> MetafileReader::Next() {
  while (const auto record = Step()) {
    const size_t least = MinRecordBytes(record->type);
    if (record->bytes.size() >= least) return record;
    Report(*record, "holds " + std::to_string(record->bytes.size()) + " bytes, needs " +
                        std::to_string(least));
  }
  return std::nullopt;
}

/// The next link of the chain, whatever it holds.
std::optional<Record> MetafileReader::Step() {
  if (ended_) return std::nullopt;
  ++index_;
  const Bytes rest = file_.subspan(at_);
  Record record{index_, LoadOrZero<uint32_t>(rest), rest};
  if (rest.size() < 8) {
    --record.index;
    record.type = kEmrEOF;
    Stop(record, "the file ends without it");
    return std::nullopt;
  }
  const auto size = LoadOrZero<uint32_t>(rest, 4);
  if (size < 8 || size > rest.size()) {
    Stop(record, "declares " + std::to_string(size) + " bytes where " +
                     std::to_string(rest.size()) + " are left; reading stops here");
    return std::nullopt;
  }
  record.bytes = rest.first(size);
  at_ += size;
  only_comments_ = only_comments_ && (record.type == kEmrHEADER || record.type == kEmrEOF ||
                                      record.type == kEmrGDICOMMENT);
  if (size % 4 != 0) Remark(record, "its size " + std::to_string(size) + " is not a multiple of 4");
  if (record.type == kEmrEOF) {
    ended_ = true;
    CheckEnd(record);
  }
  return record;
}

void MetafileReader::CheckEnd(const Record& last) {
  if (at_ < file_.size()) {
    Remark(last, std::to_string(file_.size() - at_) + " bytes follow the end of the metafile");
  }
  if (only_comments_ && last.index > 2) {
    Report(last, "only comments precede it; the page is empty");
  }
  if (header_.record_count != last.index) {
    Remark(last, "is record " + std::to_string(last.index) + ", the header declares " +
                     std::to_string(header_.record_count) + " records");
  }
}

void MetafileReader::Stop(const Record& where, std::string what) {
  ended_ = true;
  Report(where, std::move(what));
}

void MetafileReader::Report(const Record& record, std::string what) {
  Keep(record, std::move(what), false);
}

void MetafileReader::Remark(const Record& record, std::string what) {
  Keep(record, std::move(what), true);
}

void MetafileReader::Keep(const Record& record, std::string what, bool harmless) {
  ++fault_count_;
  if (faults_.size() < kMaxFaults) {
    faults_.push_back({record.index, RecordName(record.type), std::move(what), harmless});
  }
}

}  // namespace quillo::host::emf
