#pragma once

#include "base/windows.h"

#include "base/system_owners.h"
#include "config/platform/late_library.h"

namespace quillo {

/// Works as the printing user for a scope, so that the user's files and folders, links among them,
/// lead no further than the user's own rights. A thread that already works as somebody stays so;
/// where no user is found, the process's own account is the one whose folders are used.
///
/// Inside such a scope no library is loaded and no client is called: both would happen as the user.
class AsUser {
 public:
  AsUser();
  ~AsUser();
  AsUser(const AsUser&) = delete;
  AsUser& operator=(const AsUser&) = delete;

  /// False when there is a user whom this thread cannot work as: the files stay untouched.
  explicit operator bool() const { return allowed_; }

 private:
  LateLibrary security_;
  decltype(RevertToSelf)* revert_ = nullptr;  // null: nothing to revert
  bool allowed_ = true;
};

}  // namespace quillo
