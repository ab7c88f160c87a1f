#include "host/client/client_fault.h"

namespace quillo::host {

namespace {

constexpr struct {
  ClientFault fault;
  std::string_view name;
} kNames[] = {
    {ClientFault::kNone, "none"},
    {ClientFault::kAbsent, "absent"},
    {ClientFault::kLate, "late"},
    {ClientFault::kFailing, "failing"},
    {ClientFault::kHanging, "hanging"},
    {ClientFault::kDying, "dying"},
    {ClientFault::kWithoutTextRuns, "without-text-runs"},
};

}  // namespace

std::optional<ClientFault> ParseClientFault(std::string_view name) {
  for (const auto& known : kNames) {
    if (known.name == name) return known.fault;
  }
  return std::nullopt;
}

std::string_view NameOf(ClientFault fault) {
  for (const auto& known : kNames) {
    if (known.fault == fault) return known.name;
  }
  return {};
}

}  // namespace quillo::host
