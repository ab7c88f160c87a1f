#pragma once

#include "base/ddi.h"

#include <bit>
#include <map>
#include <string>
#include <vector>

#include "host/emf/metafile_builder.h"
#include "host/emf/player.h"

namespace quillo::host::emf {

inline uint32_t F(float value) { return std::bit_cast<uint32_t>(value); }
inline uint32_t N(int32_t value) { return static_cast<uint32_t>(value); }
/// Two 16-bit numbers.
inline uint32_t S(int16_t low, int16_t high) {
  return static_cast<uint16_t>(low) | static_cast<uint32_t>(static_cast<uint16_t>(high)) << 16;
}

constexpr uint32_t kStock = 0x80000000;
constexpr uint32_t kB = 0;  // a number of the bounds, which are not read

struct TestRecord {
  uint32_t type;
  std::vector<uint32_t> payload;
};

struct Played {
  std::string calls;   // drawing calls, a line each; each line of text is 100 logical units long
  std::string faults;  // a line each
  PlayResult result;
};

Played Play(const std::vector<TestRecord>& records, const Transform& to_page = {},
            const PlayOptions& options = {});

/// The last call of `records`.
std::string LastCall(const std::vector<TestRecord>& records, const Transform& to_page = {});

}  // namespace quillo::host::emf
