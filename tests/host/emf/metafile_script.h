#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>
#include <vector>

#include "host/emf_format/transform.h"

namespace quillo::host::emf {

/// A metafile as text, and its expected outcome.
struct ScriptCase {
  std::string place;  // "emf/lines.txt:12"
  std::vector<std::byte> metafile;
  Transform to_page;
  std::string refusing;  // the driver's function that fails
  bool curves = true;    // whether the driver takes curves
  std::string glyph_order;
  std::string expected;  // lines that begin with '>', '!', '~' or '-'
};

/// The cases of a script, separated by empty lines. A line is a record or one of these:
///
///     # a comment
///     $name = ...        $name is replaced by this in the lines below
///     page a b c d x y   the transform to the page
///     millimetres x y    the size of the reference device, 1000 by 500 pixels
///     header FIELDS      more of the header than its 88 bytes
///     patch offset value a word of the finished file
///     refuse name        the driver's function fails
///     flat               the driver takes no curves
///     glyphs assume|drop  what becomes of glyph indexes whose font is missing
///     repeat N RECORD    as many times
///     carry RECORD       a comment that carries the record (see carried_records.h)
///     > ...              an expected call of the driver, or the records that are read
///     ! ...  ~ ...       an expected fault; a harmless one, when only reading
///     - ...              a record that must not be carried
///
/// A record is its name without EMR_, or a number, and its fields: 7 -7 0x7F of 32 bits, 1.5 a
/// float, 3;-4 two numbers of 16 bits, 'ab' UTF-16 and "ab" bytes, both padded to 32 bits, ...24
/// zeros up to 24 words of fields. `name:` marks a place, and @name is its offset in the record.
std::vector<ScriptCase> ReadScript(std::istream& script, const std::string& name);

/// Reads tests/corpus/`name`.
std::vector<ScriptCase> ReadScript(const std::string& name);

}  // namespace quillo::host::emf
