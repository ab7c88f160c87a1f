#pragma once

#include "base/windows.h"

#include <cstdint>

// What differs between Windows versions and between 32-bit and 64-bit views. Whatever cannot be
// found out counts as absent (false).

namespace quillo {

enum class PlatformKind : uint32_t {
  kNt = 0,
  kOther = 1,  // neither of the two families
  k9x = 2,
};

/// The kind that a GetVersion result stands for.
PlatformKind PlatformKindOf(DWORD version);

/// The kind of this system.
PlatformKind Platform();

/// Whether this is the NT family at version 6 or later. For other modules of the product.
bool IsNt6OrLater();

/// Whether the user counts as an administrator, which decides where settings are kept.
bool IsAdministrator();

/// Whether this process runs under WOW64. For other modules of the product.
bool IsWow64();

/// Switches WOW64 file-system redirection off for this thread and saves its state. False where
/// there is no redirection.
bool DisableFsRedirection(void** saved_state);

/// Restores the state that DisableFsRedirection saved.
bool RevertFsRedirection(void* saved_state);

/// Keeps WOW64 file-system redirection off for a scope.
class FsRedirectionOff {
 public:
  FsRedirectionOff() : off_(DisableFsRedirection(&saved_state_)) {}
  ~FsRedirectionOff() {
    if (off_) RevertFsRedirection(saved_state_);
  }
  FsRedirectionOff(const FsRedirectionOff&) = delete;
  FsRedirectionOff& operator=(const FsRedirectionOff&) = delete;

 private:
  void* saved_state_ = nullptr;
  bool off_;
};

}  // namespace quillo
