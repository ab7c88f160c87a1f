#pragma once

#include <cstddef>
#include <cstdint>

// The driver's own part of its device mode. Applications, the spooler and stored settings carry it,
// so its layout never changes.
namespace quillo {

/// A margin of value / divisor, in the unit that is stored with it.
struct StoredMargin {
  float value;
  float divisor;
};

/// The unit in which a device mode stores its margins.
enum MarginUnit : uint32_t { kMarginMillimetres = 0, kMarginInches = 1 };

/// The bytes after the public members.
struct PrivatePart {
  std::byte reserved_before_flag[272];
  uint32_t margins_given;  // 0: every margin is 0, whatever the members below hold
  std::byte reserved_before_margins[520];
  uint32_t margin_unit;  // MarginUnit
  StoredMargin top;
  StoredMargin left;
  StoredMargin right;
  StoredMargin bottom;
};
static_assert(sizeof(PrivatePart) == 832);

}  // namespace quillo
