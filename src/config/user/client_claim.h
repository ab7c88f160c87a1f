#pragma once

namespace quillo {

/// The name, by job number, of the mutex that a client holds while it serves the job: a second
/// client leaves it alone.
inline constexpr wchar_t kClientClaim[] = L"Local\\QuilloClientJob%u";

}  // namespace quillo
