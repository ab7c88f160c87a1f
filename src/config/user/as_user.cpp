#include "config/user/as_user.h"

#include "config/user/user_paths.h"

namespace quillo {

AsUser::AsUser() : security_(L"Advapi32.dll") {
  auto* open = security_.Find<decltype(OpenThreadToken)>("OpenThreadToken");
  KernelHandle own;
  if (open != nullptr && (open(GetCurrentThread(), TOKEN_QUERY, TRUE, own.Receive()) ||
                          GetLastError() != ERROR_NO_TOKEN)) {
    return;
  }
  const KernelHandle user = UserToken();
  if (!user) return;
  auto* impersonate = security_.Find<decltype(ImpersonateLoggedOnUser)>("ImpersonateLoggedOnUser");
  auto* revert = security_.Find<decltype(RevertToSelf)>("RevertToSelf");
  allowed_ = impersonate != nullptr && revert != nullptr &&
             (impersonate(user.Get()) || impersonate(user.Get()));
  if (allowed_) revert_ = revert;
}

AsUser::~AsUser() {
  if (revert_ == nullptr) return;
  const DWORD last_error = GetLastError();
  // Once more when it fails: the thread is the engine's, which would go on as the user.
  if (!revert_()) revert_();
  SetLastError(last_error);
}

}  // namespace quillo
