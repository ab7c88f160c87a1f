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
/// hexadecimal, f floating point; '*' repeats the last letter to the end. b is one byte, t UTF-16
/// units to the end. The rest are bytes.
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
      {REC_CREATEFONT, "iiiiibbbbbbbbt"},
      {REC_SETTEXTCOLOR, "x"},
      {REC_EXTTEXTOUT, "iixiiiiuut"},
      {REC_SETDIBITSTODEVICE, "iiiiiiu"},
      {REC_STRETCHBLT, "iiiiiiiiuxxxxxxuu"},
      {REC_SETTEXTALIGN, "u"},
      {REC_PAGEVALUE, "ii"},
      {REC_TEXTRUN, "iiuuuuuu"},
      {REC_ALPHABLEND, "iiiiiiiixu"},
  };
  return letters;
}

/// ASCII as it is, other units as \\xHEX; zero units at the end as their number.
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

size_t FieldSize(char letter, size_t bytes_left) {
  return letter == 't' ? bytes_left : letter == 'b' ? 1 : 4;
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
    case 'b':
      out << uint32_t{LoadOrZero<uint8_t>(payload, offset)};
      break;
    case 't':
      DumpText(payload.subspan(offset), out);
      break;
    default:
      out << std::hex << "0x" << LoadOrZero<uint32_t>(payload, offset) << std::dec;
  }
}

void DumpPayload(const std::string& letters, Bytes payload, std::ostream& out) {
  size_t offset = 0;
  for (size_t i = 0; i < letters.size();) {
    const bool repeat = letters[i] == '*';
    const char letter = letters[repeat ? i - 1 : i];
    const size_t size = FieldSize(letter, payload.size() - offset);
    if (size > payload.size() - offset) break;
    DumpField(letter, payload, offset, out);
    offset += size;
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
