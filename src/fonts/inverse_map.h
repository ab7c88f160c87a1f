#pragma once

#include <cstdint>
#include <span>

#include "fonts/cmap4_table.h"

// The way back from glyph indexes to characters.
namespace quillo::fonts {

/// Stands for a glyph that no character maps to (U+0640, a stroke that joins letters).
inline constexpr uint16_t kNoCharacter = 1600;

/// Entries that the inverse of `cmap` has: its largest glyph + 1, modulo 65536. 0 = no inverse.
///
/// The segments count up to the terminator, the first one that starts and ends at 0xFFFF.
uint16_t InverseMapSize(const Cmap4Table& cmap);

/// Fills `table`, of InverseMapSize entries, with the character of each glyph or kNoCharacter.
///
/// Every segment in order sets the entry of each of its characters in order, so of several
/// characters the last one stays, and entry 0 is the last unmapped character. Time grows with
/// segments + 65536, also where segments overlap.
void FillInverseMap(const Cmap4Table& cmap, std::span<uint16_t> table);

}  // namespace quillo::fonts
