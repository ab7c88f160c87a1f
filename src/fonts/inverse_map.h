#pragma once

#include <cstdint>
#include <span>

#include "fonts/cmap4_table.h"

// From glyph indexes back to characters.
namespace quillo::fonts {

/// Stands for a glyph that no character maps to (U+0640, a stroke that joins letters).
inline constexpr uint16_t kNoCharacter = 1600;

/// Entries of the inverse of `cmap`: its largest glyph + 1, modulo 65536. 0 = no inverse.
///
/// The segments count up to the terminator, the first one that starts and ends at 0xFFFF.
uint16_t InverseMapSize(const Cmap4Table& cmap);

/// Fills `table`, of InverseMapSize entries, with the character of each glyph or kNoCharacter.
///
/// Compatibility: every segment in order sets the entry of each of its characters in order, so
/// where characters share a glyph the last one wins (a blank can become U+00A0), and entry 0 is the
/// last unmapped character. Kept for pages, whose text has always read so.
///
/// Time grows with
/// segments + 65536, even where segments overlap.
void FillInverseMap(const Cmap4Table& cmap, std::span<uint16_t> table);

}  // namespace quillo::fonts
