#include "support/record_dump.h"

#include <iomanip>
#include <map>
#include <sstream>
#include <vector>

#include "capture/records/framing.h"
#include "capture/records/types.h"

namespace quillo::test {
namespace {

using namespace records;

/// How the payload of each type reads, a letter a field of 4 bytes: i signed, u unsigned, x in
/// hexadecimal, f floating point; '*' repeats the last letter to the end. The rest are bytes.
const std::map<uint32_t, std::string>& FieldLetters() {
  static const std::map<uint32_t, std::string> letters = {
      {REC_CREATEPEN, "uiix"},
      {REC_EXTCREATEPEN, "xiu*"},
      {REC_CREATEBRUSH, "uxuuu"},
      {REC_MOVETO, "ii"},
      {REC_LINETO, "ii"},
      {REC_POLYBEZIER, "ui*"},
      {REC_SETBKCOLOR, "x"},
      {REC_SETBKMODE, "u"},
      {REC_RECTANGLE, "iiii"},
      {REC_SETWORLDTRANSFORM, "ffffff"},
      {REC_SETMITERLIMIT, "f"},
      {REC_SETPOLYFILLMODE, "u"},
      {REC_SETBRUSHORG, "ii"},
      {REC_SETROP2, "u"},
      {REC_FILLRECT, "iiii"},
      {REC_MASKBLT, "iiiiiiiixuu"},
      {REC_BITBLT, "iiiiiixu"},
      {REC_PATBLT, "iiiix"},
      {REC_CREATEFONT, "iiiii"},
      {REC_SETTEXTCOLOR, "x"},
      {REC_EXTTEXTOUT, "iixiiiiuu"},
      {REC_SETDIBITSTODEVICE, "iiiiiiu"},
      {REC_STRETCHBLT, "iiiiiiiiuxxxxxxuu"},
      {REC_SETTEXTALIGN, "u"},
      {REC_PAGEVALUE, "ii"},
      {REC_TEXTRUN, "iiuuuuuu"},
      {REC_ALPHABLEND, "iiiiiiiixu"},
  };
  return letters;
}

void DumpField(char letter, Bytes payload, size_t offset, std::ostream& out) {
  out << ' ';
  switch (letter) {
    case 'i':
      out << LoadOrZero<int32_t>(payload, offset);
      break;
    case 'u':
      out << LoadOrZero<uint32_t>(payload, offset);
      break;
    case 'f':
      out << LoadOrZero<float>(payload, offset);
      break;
    default:
      out << std::hex << "0x" << LoadOrZero<uint32_t>(payload, offset) << std::dec;
  }
}

void DumpPayload(const std::string& letters, Bytes payload, std::ostream& out) {
  size_t offset = 0;
  for (size_t i = 0; i < letters.size() && payload.size() - offset >= 4; offset += 4) {
    const bool repeat = letters[i] == '*';
    DumpField(letters[repeat ? i - 1 : i], payload, offset, out);
    if (!repeat) ++i;
  }
  const Bytes rest = payload.subspan(offset);
  if (rest.empty()) return;
  out << " [" << std::hex << std::setfill('0');
  for (const std::byte byte : rest) out << std::setw(2) << static_cast<int>(byte);
  out << std::dec << ']';
}

void DumpName(uint32_t type, std::ostream& out) {
  if (const RecordInfo* info = FindRecordInfo(type)) {
    out << info->name;
  } else {
    out << std::hex << "0x" << type << std::dec;
  }
}

}  // namespace

std::string DumpRecords(Bytes stream) {
  std::vector<std::byte> copy(stream.begin(), stream.end());
  MutableBytes rest = copy;
  std::ostringstream out;
  while (const auto frame = NextFrame(rest)) {
    const auto letters = FieldLetters().find(frame->type);
    DumpName(frame->type, out);
    DumpPayload(letters == FieldLetters().end() ? "" : letters->second, frame->payload, out);
    out << '\n';
    rest = rest.subspan(frame->size);
  }
  if (!rest.empty()) out << "incomplete\n";
  return out.str();
}

}  // namespace quillo::test
