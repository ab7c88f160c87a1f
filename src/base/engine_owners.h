#pragma once

#include "base/ddi.h"

#include "base/owner.h"

namespace quillo {

/// A path that the engine made for the driver.
struct EnginePathTraits {
  using Type = PATHOBJ*;
  static constexpr Type kNull = nullptr;
  static void Release(Type path) { EngDeletePath(path); }
};
using EnginePath = Owner<EnginePathTraits>;

}  // namespace quillo
