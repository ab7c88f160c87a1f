#pragma once

#include "base/windows.h"

#include "base/bytes.h"
#include "base/com_owners.h"
#include "base/system_owners.h"
#include "interface/quillo.h"

// The objects that a client hands to the driver. The client runs as the user, the driver may run as
// the spooler: nothing of what comes from there is acted on before it was looked at.
namespace quillo {

/// Largest reference that is looked at, in bytes; a usual one has 68 to some hundred.
inline constexpr ULONG kMaxReferenceBytes = 16384;

/// A marshalled interface pointer.
struct Reference {
  HeapBlock block;
  ULONG size = 0;  // bytes of it
  [[nodiscard]] Bytes View() const { return {block.As<const std::byte>(), size}; }
};

/// Reads what is left of a stream. Fails when that is more than a reference.
HRESULT ReadReference(IStream& stream, Reference& reference);

/// The client's callback object. E_ACCESSDENIED unless `reference` is a standard one to that
/// interface with no addresses but this machine's own: no class is loaded, no other machine is
/// asked. Other failures are the system's.
HRESULT UnmarshalClient(const Reference& reference, ComPtr<IQuilloClient>& client);

/// Whether an object of the client may be called up to `slots` entries of its table. Its process
/// then learns who calls and cannot act as the caller, and its type information, where it has
/// any, describes a table of that length. Of an object without, the table cannot be checked.
bool IsCallable(IDispatch& object, size_t slots);

}  // namespace quillo
