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

/// The bytes are not a playable enhanced metafile; `what()` is a predicate that says what they are
/// instead ("is a PDF document").
class UnreadableMetafile : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A fault of a record. Unless it is harmless, the record or its damaged part is not drawn.
struct MetafileFault {
  uint32_t record_index = 0;  // from 1, as the header counts records
  std::string record_name;
  std::string what;
  bool harmless = false;  // the page is complete
};

/// "record 12 (EMR_POLYGON16): holds 20 bytes, needs 28"
std::string Describe(const MetafileFault& fault);

/// The file's header. (The size of the reference device in micrometres, in the longest form of the
/// header, is ignored: many writers have other numbers there.)
struct MetafileHeader {
  RectL bounds;                // of the drawing, reference device pixels, inclusive
  RectL frame;                 // of the picture, 0.01 mm, inclusive
  uint32_t record_count = 0;   // as declared
  uint32_t handle_count = 0;   // size of the handle table, entry 0 included
  std::u16string description;  // application and title, NUL-separated
  SizeL device;                // reference device, pixels; never 0
  SizeL millimetres;           // reference device, mm; never 0
};

struct Record {
  uint32_t index = 0;  // counted from 1
  uint32_t type = 0;
  Bytes bytes;  // the whole record, type and size included
};

/// Steps through the records of an enhanced metafile in memory. Trusts none of its sizes and reads
/// no byte outside it.
class MetafileReader {
 public:
  /// `file` must outlive the reader. Throws UnreadableMetafile.
  explicit MetafileReader(Bytes file);

  const MetafileHeader& header() const { return header_; }

  /// The next record; nothing after the end record or when the chain of records is broken. Skips
  /// records that are too short for their type. A broken chain and a short record leave a fault.
  std::optional<Record> Next();

  /// How many EMF+ records are lost, as no record of the file itself repeats their drawing.
  uint64_t unrepeated_emf_plus() const { return unrepeated_emf_plus_; }

  /// Adds a fault of a record that Next() returned.
  void Report(const Record& record, std::string what);
  /// The same for a harmless fault.
  void Remark(const Record& record, std::string what);

  /// In the order of the records; at most kMaxFaults, further ones are only counted.
  const std::vector<MetafileFault>& faults() const { return faults_; }
  size_t fault_count() const { return fault_count_; }
  static constexpr size_t kMaxFaults = 100;

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
  bool only_comments_ = true;  // so far, except header and end
  std::vector<MetafileFault> faults_;
  size_t fault_count_ = 0;
};

}  // namespace quillo::host::emf
