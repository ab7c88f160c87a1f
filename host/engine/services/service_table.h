#pragma once

#include <span>

namespace quillo::host {

/// An engine service that a driver may import.
struct EngineService {
  const char* name;
  void* address;
};

/// Every service that this engine offers, under the engine's own names.
std::span<const EngineService> EngineServices();

}  // namespace quillo::host
