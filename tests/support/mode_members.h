#pragma once

#include <algorithm>
#include <gtest/gtest.h>
#include <span>
#include <sstream>
#include <string>
#include <type_traits>

#include "config/device_mode/device_mode.h"
#include "support/margins.h"

// Device modes as text: members of one, a NAME=VALUE each. Margins are in inches.
namespace quillo::test {

/// Whether two modes are the same to the last byte.
inline bool SameModes(const DeviceMode& a, const DeviceMode& b) {
  return std::ranges::equal(std::as_bytes(std::span(&a, 1)), std::as_bytes(std::span(&b, 1)));
}

/// Calls `visit` with each word of `members`, the member that it names and its value. The words of
/// other names are returned.
template <typename Visit>
std::string ForEachMember(DeviceMode& mode, const std::string& members, Visit visit) {
  DEVMODEW& pub = mode.pub;
  std::istringstream words(members);
  std::string others;
  for (std::string word; words >> word;) {
    const size_t equals = word.find('=');
    const auto is = [&](std::string_view known, auto& member) {
      const bool same = known == word.substr(0, equals);
      if (same) visit(word, member, std::stod(word.substr(equals + 1)));
      return same;
    };
    const bool found =
        is("paper", pub.dmPaperSize) || is("width", pub.dmPaperWidth) ||
        is("length", pub.dmPaperLength) || is("orientation", pub.dmOrientation) ||
        is("quality", pub.dmPrintQuality) || is("yres", pub.dmYResolution) ||
        is("copies", pub.dmCopies) || is("source", pub.dmDefaultSource) ||
        is("color", pub.dmColor) || is("duplex", pub.dmDuplex) || is("bits", pub.dmBitsPerPel) ||
        is("fields", pub.dmFields) || is("specversion", pub.dmSpecVersion) ||
        is("version", pub.dmDriverVersion) || is("size", pub.dmSize) ||
        is("extra", pub.dmDriverExtra) || is("letter", pub.dmDeviceName[0]) ||
        is("last_letter", pub.dmDeviceName[CCHDEVICENAME - 1]) || is("left", mode.own.left.value) ||
        is("top", mode.own.top.value) || is("margins", mode.own.margins_given) ||
        is("private", mode.own.reserved_before_flag[7]);
    if (!found) others += word + ' ';
  }
  return others;
}

/// A mode with a margin stores all of them.
inline void SetMembers(DeviceMode& mode, const std::string& members) {
  if (members.find("left=") != std::string::npos) SetMargins(mode, 0, 0);
  EXPECT_EQ(ForEachMember(mode, members,
                          [](const std::string&, auto& member, double value) {
                            member = static_cast<std::remove_reference_t<decltype(member)>>(value);
                          }),
            "");
}

/// Returns the words that name no member.
inline std::string ExpectMembers(DeviceMode mode, const std::string& members) {
  return ForEachMember(mode, members, [](const std::string& word, auto& member, double value) {
    EXPECT_EQ(static_cast<double>(member), value) << word;
  });
}

}  // namespace quillo::test
