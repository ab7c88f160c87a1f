#pragma once

#include <optional>
#include <string_view>

namespace quillo::host {

/// How a client misbehaves: tests of the driver's failure paths ask for it.
enum class ClientFault {
  kNone,
  kAbsent,           // there is no client
  kLate,             // comes after the job was opened, before its first page
  kFailing,          // every call returns a failure
  kHanging,          // returns from the first NotifyPage after three seconds
  kDying,            // its process ends in NotifyPage
  kWithoutTextRuns,  // its page objects do not know the property
};

/// The fault that "absent", "late", ... names.
std::optional<ClientFault> ParseClientFault(std::string_view name);
std::string_view NameOf(ClientFault fault);

}  // namespace quillo::host
