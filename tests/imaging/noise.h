#pragma once

#include <cstddef>
#include <random>
#include <vector>

namespace quillo::imaging {

/// The same bytes for the same seed, on every machine.
inline std::vector<std::byte> Noise(size_t size, uint32_t seed = 1) {
  std::mt19937 random(seed);
  std::vector<std::byte> bytes(size);
  for (std::byte& byte : bytes) byte = static_cast<std::byte>(random());
  return bytes;
}

}  // namespace quillo::imaging
