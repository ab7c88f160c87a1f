#pragma once

#include "base/ddi.h"

#include <map>
#include <memory>
#include <string>

#include "driver/device/device.h"

namespace quillo::test {

/// All that the drawing hooks are called with, set by lines of text (tests/corpus/capture/README.md
/// lists them). What no line has set is null or 0.
class Stage {
 public:
  Stage(DEVICE_PDEV& device, SURFOBJ& surface) : device_(device), surface_(surface) {}

  /// Carries out one line. Throws std::invalid_argument when it cannot be read.
  void Set(const std::string& line);

  /// Whether Call knows a name: those of the drawing hooks, and of the writers below them that are
  /// tested by themselves.
  static bool IsCall(const std::string& name);

  /// Makes the call and returns its result: "TRUE", "FALSE" with the last error, or what the writer
  /// reports.
  std::string Call(const std::string& name) const { return Call(name, &surface_); }
  std::string Call(const std::string& name, SURFOBJ* surface) const;

  /// What was set under a name: converts to the hooks' own pointers (null) and numbers (0).
  struct Argument {
    void* thing;
    template <typename T>
    operator T*() const {
      return static_cast<T*>(thing);
    }
    operator uint32_t() const { return thing != nullptr ? *static_cast<uint32_t*>(thing) : 0; }
  };
  Argument operator[](const std::string& name) const {
    const auto found = things_.find(name);
    return {found != things_.end() ? found->second.get() : nullptr};
  }
  DEVICE_PDEV& Device() const { return device_; }
  SURFOBJ* Surface() const { return &surface_; }

 private:
  DEVICE_PDEV& device_;
  SURFOBJ& surface_;
  // Each begins with the structure of the interface that it stands for.
  std::map<std::string, std::shared_ptr<void>> things_;
  std::string failing_service_;
};

}  // namespace quillo::test
