#pragma once

#include <cstddef>
#include <span>
#include <windows.h>

#include "host/app_protocol/app_protocol.h"

namespace quillo::app {

/// Whether a print host has started this program, to take what it prints.
bool HasHost();

/// This process's connection to the host: made for its first user, ended with its last, so that
/// other programs that the host takes from, and that wait up to half a minute, have their turn.
class HostConnection {
 public:
  HostConnection();
  ~HostConnection();
  HostConnection(const HostConnection&) = delete;
  HostConnection& operator=(const HostConnection&) = delete;
};

struct Reply {
  int result;  // 0 or less: refused, or no answer
  size_t bytes;
};

/// Asks the host and waits for its answer, whose data is copied to `out`, as much as fits.
Reply Ask(const RequestHeader& header, std::span<const std::byte> mode,
          std::span<const std::byte> data, std::span<std::byte> out = {});

}  // namespace quillo::app
