#pragma once

#include <bit>
#include <map>
#include <string>
#include <vector>

#include "host/emf/metafile_builder.h"
#include "host/emf/player.h"
#include "host/emf/recording_canvas.h"

namespace quillo::host::emf {

inline uint32_t F(float value) { return std::bit_cast<uint32_t>(value); }
inline uint32_t N(int32_t value) { return static_cast<uint32_t>(value); }
/// Two 16-bit numbers.
inline uint32_t S(int16_t low, int16_t high) {
  return static_cast<uint16_t>(low) | static_cast<uint32_t>(static_cast<uint16_t>(high)) << 16;
}

constexpr uint32_t kStock = 0x80000000;

struct TestRecord {
  uint32_t type;
  std::vector<uint32_t> payload;
};

struct Played {
  std::string calls;   // a line each
  std::string faults;  // a line each
  std::map<std::string, int> not_carried;
};

inline Played Play(const std::vector<TestRecord>& records, const Transform& to_page = {}) {
  MetafileBuilder builder;
  for (const auto& [type, payload] : records) builder.Add(type, payload);
  const auto file = builder.Finish();
  MetafileReader reader(file);
  RecordingCanvas canvas;
  Played played;
  played.not_carried = PlayMetafile(reader, to_page, canvas).not_carried;
  played.calls = canvas.Take();
  for (const MetafileFault& fault : reader.faults()) played.faults += Describe(fault) + "\n";
  return played;
}

/// The last call of `records`.
inline std::string LastCall(const std::vector<TestRecord>& records, const Transform& to_page = {}) {
  std::string calls = Play(records, to_page).calls;
  if (!calls.empty()) calls.pop_back();
  return calls.substr(calls.rfind('\n') + 1);
}

}  // namespace quillo::host::emf
