#pragma once

#include <memory>
#include <type_traits>
#include <utility>

namespace quillo {

template <typename Signature>
class FunctionRef;

/// A view of a callable: no ownership, no allocation. The callable must outlive it, so it is for
/// parameters and for structs that carry them.
template <typename Result, typename... Arguments>
class FunctionRef<Result(Arguments...)> {
 public:
  template <typename Callable>
  requires(!std::is_same_v<std::remove_cvref_t<Callable>, FunctionRef> &&
           std::is_invocable_r_v<Result, Callable&, Arguments...>)
      FunctionRef(Callable&& callable)  // NOLINT(*-forwarding-reference-overload)
      : object_(const_cast<void*>(static_cast<const void*>(std::addressof(callable)))),
        call_([](void* object, Arguments... arguments) -> Result {
          return (*static_cast<std::remove_reference_t<Callable>*>(object))(
              std::forward<Arguments>(arguments)...);
        }) {}

  Result operator()(Arguments... arguments) const {
    return call_(object_, std::forward<Arguments>(arguments)...);
  }

 private:
  void* object_;
  Result (*call_)(void*, Arguments...);
};

}  // namespace quillo
