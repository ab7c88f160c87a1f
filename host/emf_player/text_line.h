#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "host/emf_format/geometry.h"
#include "host/emf_format/payload_reader.h"
#include "host/emf_player/emf_player.h"

namespace quillo::host::emf {

// Options that only records have.
inline constexpr uint32_t kNoRectangle = 0x100;
inline constexpr uint32_t kSmallCharacters = 0x200;

/// A line of text as its record has it.
struct TextLine {
  PointL reference;  // logical
  uint32_t options = 0;
  bool advanced = false;  // recorded in the advanced graphics mode
  RectL rectangle;        // logical; with ETO_OPAQUE or ETO_CLIPPED
  std::wstring text;
  std::vector<double> dx;
  std::vector<double> dy;
};

/// Reads `count` characters at `offset` from the record's start into `line`, whose options are
/// known. `wide`: UTF-16, otherwise in the code page of the DC's font.
void ReadCharacters(EmfPlayer& player, PayloadReader& record, size_t offset, size_t count,
                    bool wide, TextLine& line);

/// Reads the EMRTEXT that four record types share. Its offsets count from the record's start.
TextLine ReadTextLine(EmfPlayer& player, PayloadReader& record, bool advanced, bool wide);

}  // namespace quillo::host::emf
