#pragma once

#include "base/windows.h"

#include <objbase.h>
#include <oleauto.h>

#include "base/owner.h"

namespace quillo {

struct BstrTraits {
  using Type = BSTR;
  static constexpr Type kNull = nullptr;
  static void Release(Type text) { SysFreeString(text); }
};
using Bstr = Owner<BstrTraits>;

/// A counted reference to a COM object.
template <typename Interface>
struct ComTraits {
  using Type = Interface*;
  static constexpr Type kNull = nullptr;
  static void Release(Type object) { object->Release(); }
};
template <typename Interface>
class ComPtr : public Owner<ComTraits<Interface>> {
 public:
  using Owner<ComTraits<Interface>>::Owner;
  Interface* operator->() const { return this->Get(); }
};

}  // namespace quillo
