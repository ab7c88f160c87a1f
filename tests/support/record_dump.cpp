#include "support/record_dump.h"

#include <iomanip>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "capture/records/framing.h"
#include "capture/records/types.h"
#include "support/case_table.h"

namespace quillo::test {
namespace {

using namespace records;

/// The letters of a record's fields: capture/records/fields.txt says what they mean.
std::string FieldLetters(const std::string& record) {
  static const std::vector<CaseRow> rows = ReadCases("capture/records/fields.txt");
  for (const CaseRow& row : rows) {
    if (row.fields[0] == record) return row.fields[1];
  }
  return "";
}

// ASCII as it is, other units as \\xHEX; zero units at the end as their number.
void DumpText(Bytes text, std::ostream& out) {
  size_t zeros = 0;
  out << '"';
  for (size_t offset = 0; offset < text.size(); offset += 2) {
    const auto unit = LoadOrZero<uint16_t>(text, offset);
    if (unit == 0 && ++zeros != 0) continue;
    for (; zeros != 0; --zeros) out << "\\x0";
    if (unit < 128) {
      out << static_cast<char>(unit);
    } else {
      out << std::hex << "\\x" << unit << std::dec;
    }
  }
  out << "\"+" << zeros;
}

// Takes one field off the payload; false when it is not whole.
bool DumpField(char letter, Bytes& payload, std::ostream& out) {
  const size_t size = letter == 't' ? payload.size() : letter == 'b' ? 1 : 4;
  if (payload.size() < size) return false;
  const Bytes field = payload.first(size);
  payload = payload.subspan(size);
  const auto number = LoadOrZero<uint32_t>(field);
  out << ' ';
  if (letter == 't') {
    DumpText(field, out);
  } else if (letter == 'i') {
    out << static_cast<int32_t>(number);
  } else if (letter == 'f') {
    out << LoadOrZero<float>(field);
  } else if (letter == 'x') {
    out << std::hex << "0x" << number << std::dec;
  } else {
    out << number;
  }
  return true;
}

void DumpPayload(std::string_view letters, Bytes payload, std::ostream& out) {
  for (size_t i = 0; i < letters.size();) {
    const bool repeat = letters[i] == '*';
    if (!DumpField(letters[repeat ? i - 1 : i], payload, out)) break;
    if (!repeat) ++i;
  }
  if (payload.empty()) return;
  out << " [" << std::hex << std::setfill('0');
  for (const std::byte byte : payload) out << std::setw(2) << static_cast<int>(byte);
  out << std::dec << ']';
}

}  // namespace

std::string DumpRecords(Bytes stream) {
  std::vector<std::byte> copy(stream.begin(), stream.end());
  MutableBytes rest = copy;
  std::ostringstream out;
  while (const auto frame = NextFrame(rest)) {
    const RecordInfo* info = FindRecordInfo(frame->type);
    std::ostringstream name;
    if (info != nullptr) {
      name << std::string_view(info->name).substr(std::string_view("REC_").size());
    } else {
      name << std::hex << "0x" << frame->type;
    }
    out << name.str();
    DumpPayload(FieldLetters(name.str()), frame->payload, out);
    out << '\n';
    rest = rest.subspan(frame->size);
  }
  if (!rest.empty()) out << "incomplete\n";
  return out.str();
}

}  // namespace quillo::test
