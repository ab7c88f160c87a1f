#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "base/bytes.h"
#include "host/emf_format/geometry.h"

namespace quillo::host::emf {

/// The bytes are no enhanced metafile that can be played; `what()` is a sentence that says what
/// they are instead.
class UnreadableMetafile : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Something that is wrong with a record. The record itself, or the part of it that is damaged, is
/// not drawn, unless the fault is harmless.
struct MetafileFault {
  uint32_t record_index = 0;  // counted from 1, as the header counts records
  std::string record_name;
  std::string what;
  bool harmless = false;  // nothing is missing for it
};

/// "record 12 (EMR_POLYGON16): holds 20 bytes, needs 28"
std::string Describe(const MetafileFault& fault);

/// What the header says. (The reference device's size in micrometres, in the longest form of the
/// header, is not read: many writers put other numbers there.)
struct MetafileHeader {
  RectL bounds;                // of the drawing, reference device pixels, inclusive
  RectL frame;                 // of the picture, 0.01 mm, inclusive
  uint32_t record_count = 0;   // as declared
  uint32_t handle_count = 0;   // size of the handle table, entry 0 included
  std::u16string description;  // application and title, NUL-separated
  SizeL device;                // reference device, pixels; never 0
  SizeL millimeters;           // reference device, mm; never 0
};

struct Record {
  uint32_t index = 0;  // counted from 1
  uint32_t type = 0;
  Bytes bytes;  // the whole record, type and size included
};

/// Steps through the records of an enhanced metafile in memory. Trusts no size of the file and
/// reads no byte outside it.
class MetafileReader {
 public:
  /// `file` must outlive the reader. Throws UnreadableMetafile.
  explicit MetafileReader(Bytes file);

  const MetafileHeader& header() const { return header_; }

  /// The next record; nothing after the end record or when the chain of records is broken. Records
  /// shorter than their type needs are passed over. Each of these leaves a fault.
  std::optional<Record> Next();

  /// EMF+ records whose drawing is lost, since the file's own records do not draw it again.
  uint64_t unrepeated_emf_plus() const { return unrepeated_emf_plus_; }

  /// Notes what is wrong with a record that Next() gave.
  void Report(const Record& record, std::string what);
  /// The same for a harmless fault.
  void Remark(const Record& record, std::string what);

  /// In the order of the records; at most kMostFaults, the rest is only counted.
  const std::vector<MetafileFault>& faults() const { return faults_; }
  size_t fault_count() const { return fault_count_; }
  static constexpr size_t kMostFaults = 100;

 private:
  void ReadHeader();
  void RefuseEmfPlusOnly();
  std::optional<Record> Step();
  void Stop(const Record& where, std::string what);
  void Keep(const Record& record, std::string what, bool harmless);
  void CheckEnd(const Record& last);

  Bytes file_;
  MetafileHeader header_;
  uint64_t unrepeated_emf_plus_ = 0;
  size_t at_ = 0;
  uint32_t index_ = 0;  // of the record last read
  bool ended_ = false;
  bool only_comments_ = true;  // so far, header and end aside
  std::vector<MetafileFault> faults_;
  size_t fault_count_ = 0;
};

}  // namespace quillo::host::emf
