#pragma once

#include <string>

#include "base/bytes.h"

namespace quillo::test {

/// A record stream as text, one line a record: its name without REC_, its fields (colours,
/// operation codes and flags in hexadecimal), and what follows them: counted numbers one by
/// one, text in quotes with the number of zero units after it, bytes of bitmaps in brackets. A
/// record that is cut off ends the text with "incomplete".
std::string DumpRecords(Bytes stream);

}  // namespace quillo::test
