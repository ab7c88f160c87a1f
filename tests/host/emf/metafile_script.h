#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include "host/emf_format/transform.h"

namespace quillo::host::emf {

/// A metafile as text, and what has to become of it.
struct ScriptCase {
  std::string place;  // "lines.txt:12"
  std::vector<std::byte> metafile;
  Transform to_page;
  std::string expected;  // lines that begin with '>', '!' or '-'
};

/// The cases of a script; empty lines stand between them. A line is a record or one of these:
///
///     # a comment
///     $name = ...        $name stands for all this in the lines below
///     page a b c d x y   the transform to the page
///     millimetres x y    the size of the reference device, 1000 by 500 pixels
///     > ...              a call of the driver that is expected
///     ! ...              a fault that is expected
///     - ...              a record that is expected not to be carried
///
/// A record is its name without EMR_, or a number, and its fields: 7 -7 0x7F of 32 bits, 1.5 a
/// float, 3;-4 two numbers of 16 bits, 'ab' UTF-16 and "ab" bytes, both filled up to 32 bits, ...24
/// zeros up to 24 words of fields. `name:` is no field but marks a place, @name is its offset in
/// the record.
std::vector<ScriptCase> ReadScript(const std::filesystem::path& path);

}  // namespace quillo::host::emf
