#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/bytes.h"

namespace quillo::test {

/// The bytes of hexadecimal digits.
inline std::vector<std::byte> HexBytes(const std::string& digits) {
  std::vector<std::byte> bytes;
  for (size_t i = 0; i + 1 < digits.size(); i += 2) {
    bytes.push_back(static_cast<std::byte>(std::stoi(digits.substr(i, 2), nullptr, 16)));
  }
  return bytes;
}

/// FNV-1a, 32 bits.
inline uint32_t Digest(Bytes bytes) {
  uint32_t digest = 2166136261u;
  for (const std::byte byte : bytes) digest = (digest ^ static_cast<uint32_t>(byte)) * 16777619u;
  return digest;
}

}  // namespace quillo::test
