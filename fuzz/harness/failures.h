#pragma once

#include <cstdint>
#include <string_view>

namespace quillo::harness {

/// Takes what any system function takes, up to four arguments.
using AnyFunction = uintptr_t(__stdcall*)(uintptr_t, uintptr_t, uintptr_t, uintptr_t);

/// What is called instead of a system function that is to fail: it returns what that function
/// returns on failure, and sets the last error as it does. Null for a function that cannot fail.
/// Most fail with 0.
AnyFunction FailureOf(std::string_view library, std::string_view function);

/// The function of which the call that is being failed should have been one: those that release
/// something do so, and only report that they did not.
extern AnyFunction released_by;

}  // namespace quillo::harness
