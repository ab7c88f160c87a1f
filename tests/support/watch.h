#pragma once

#include "base/windows.h"

#include <algorithm>
#include <functional>
#include <tuple>
#include <vector>

#include "support/import_patch.h"

namespace quillo::test {

/// Name of an imported function.
template <size_t kSize>
struct ImportName {
  char text[kSize];
  constexpr ImportName(const char (&name)[kSize]) { std::copy_n(name, kSize, text); }  // NOLINT
};

template <ImportName kName, typename Function>
class ImportWatch;

/// Notes the calls of one import of this program for a scope, and answers them in its place.
/// One at a time for each function. Structures that a call points to are not copied: `answer` looks
/// at them.
template <ImportName kName, typename Result, typename... Arguments>
class ImportWatch<kName, Result(Arguments...)> {
 public:
  explicit ImportWatch(std::function<Result(Arguments...)> answer) : answer_(std::move(answer)) {
    current_ = this;
  }
  explicit ImportWatch(Result answer)
      : ImportWatch(
            std::function<Result(Arguments...)>([answer](Arguments...) { return answer; })) {}

  [[nodiscard]] Result CallOriginal(Arguments... arguments) const {
    return patch_.template Original<Result WINAPI(Arguments...)>()(arguments...);
  }

  std::vector<std::tuple<Arguments...>> calls;

 private:
  static Result WINAPI Answer(Arguments... arguments) {
    current_->calls.emplace_back(arguments...);
    return current_->answer_(arguments...);
  }

  static inline ImportWatch* current_ = nullptr;
  std::function<Result(Arguments...)> answer_;
  ImportPatch patch_{kName.text, &Answer};
};

/// The watch of a function by its name as imported: WATCH(CreateDCW) watch(nullptr).
#define WATCH(function) ::quillo::test::ImportWatch<#function, decltype(function)>

}  // namespace quillo::test
