#include "job/client_reference.h"

#include <algorithm>

#include "job/object_reference.h"

namespace quillo {

namespace {

constexpr size_t kClientSlots = 17;

/// An object that is marshalled only to learn this machine's addresses. Lives as long as the
/// module.
class Beacon final : public IUnknown {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
    const bool known = IsEqualIID(id, __uuidof(IUnknown));
    *object = known ? this : nullptr;
    return known ? S_OK : E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
};

template <typename Interface>
Bytes IdOf() {
  return std::as_bytes(std::span(&__uuidof(Interface), 1));
}

HRESULT Rewind(IStream& stream) { return stream.Seek({}, STREAM_SEEK_SET, nullptr); }

/// Whether a reference to an object of this process would have the same addresses.
bool AreOwnAddresses(Bytes addresses, MSHCTX context) {
  static Beacon beacon;
  ComPtr<IStream> stream;
  if (FAILED(CreateStreamOnHGlobal(nullptr, TRUE, stream.Receive())) ||
      FAILED(CoMarshalInterface(stream.Get(), __uuidof(IUnknown), &beacon, context, nullptr,
                                MSHLFLAGS_NORMAL))) {
    return false;
  }
  Reference own;
  const bool read =
      SUCCEEDED(Rewind(*stream.Get())) && SUCCEEDED(ReadReference(*stream.Get(), own));
  if (SUCCEEDED(Rewind(*stream.Get()))) CoReleaseMarshalData(stream.Get());
  if (!read) return false;
  const auto expected = AddressesOfReference(own.View(), IdOf<IUnknown>());
  return expected && std::ranges::equal(*expected, addresses);
}

bool StaysOnThisMachine(Bytes addresses) {
  return addresses.size() == kNoAddresses || AreOwnAddresses(addresses, MSHCTX_LOCAL) ||
         AreOwnAddresses(addresses, MSHCTX_DIFFERENTMACHINE);
}

bool HideIdentity(IUnknown& proxy) {
  auto* const own_name = COLE_DEFAULT_PRINCIPAL;
  const HRESULT result = CoSetProxyBlanket(
      &proxy, static_cast<DWORD>(RPC_C_AUTHN_DEFAULT), RPC_C_AUTHZ_DEFAULT, own_name,
      RPC_C_AUTHN_LEVEL_DEFAULT, RPC_C_IMP_LEVEL_IDENTIFY, COLE_DEFAULT_AUTHINFO, EOAC_DEFAULT);
  // An object of this process has no proxy; Wine's proxies carry no token.
  return SUCCEEDED(result) || result == E_NOINTERFACE || result == E_NOTIMPL;
}

/// Sets the proxy of the interface and that of the object itself, through which it is released.
bool HideIdentityFrom(IUnknown& object) {
  ComPtr<IUnknown> identity;
  object.QueryInterface(__uuidof(IUnknown), reinterpret_cast<void**>(identity.Receive()));
  return HideIdentity(object) && (!identity || HideIdentity(*identity.Get()));
}

struct Table {
  TYPEKIND kind = TKIND_MAX;
  size_t entries = 0;
};

Table TableOf(ITypeInfo& info) {
  TYPEATTR* attributes = nullptr;
  if (FAILED(info.GetTypeAttr(&attributes)) || attributes == nullptr) return {};
  const Table table = {attributes->typekind, attributes->cbSizeVft / sizeof(void*)};
  info.ReleaseTypeAttr(attributes);
  return table;
}

/// Whether `info` describes a table with fewer entries. The late-bound face of a dual interface
/// says nothing about the table; its other face does.
bool DescribesShorterTable(ITypeInfo& info, size_t slots) {
  Table table = TableOf(info);
  if (table.kind == TKIND_DISPATCH) {
    HREFTYPE reference = 0;
    ComPtr<ITypeInfo> other;
    if (FAILED(info.GetRefTypeOfImplType(static_cast<UINT>(-1), &reference)) ||
        FAILED(info.GetRefTypeInfo(reference, other.Receive())) || !other ||
        !HideIdentityFrom(*other.Get())) {
      return false;
    }
    table = TableOf(*other.Get());
  }
  return table.kind == TKIND_INTERFACE && table.entries < slots;
}

}  // namespace

HRESULT ReadReference(IStream& stream, Reference& reference) {
  reference.block = HeapBlock(kMaxReferenceBytes + 1);
  if (!reference.block) return E_OUTOFMEMORY;
  const HRESULT result =
      stream.Read(reference.block.Get(), kMaxReferenceBytes + 1, &reference.size);
  if (FAILED(result)) return result;
  return reference.size <= kMaxReferenceBytes ? S_OK : E_ACCESSDENIED;
}

HRESULT UnmarshalClient(const Reference& reference, ComPtr<IQuilloClient>& client) {
  const auto addresses = AddressesOfReference(reference.View(), IdOf<IQuilloClient>());
  if (!addresses || !StaysOnThisMachine(*addresses)) return E_ACCESSDENIED;

  // The bytes that were looked at, whatever becomes of the file.
  ComPtr<IStream> stream;
  HRESULT result = CreateStreamOnHGlobal(nullptr, TRUE, stream.Receive());
  if (SUCCEEDED(result)) result = stream->Write(reference.block.Get(), reference.size, nullptr);
  if (SUCCEEDED(result)) result = Rewind(*stream.Get());
  if (FAILED(result)) return result;
  result = CoUnmarshalInterface(stream.Get(), __uuidof(IQuilloClient),
                                reinterpret_cast<void**>(client.Receive()));
  if (FAILED(result) || !client) {
    client.Reset();
    return FAILED(result) ? result : E_FAIL;
  }
  if (IsCallable(*client.Get(), kClientSlots)) return S_OK;
  client.Reset();
  return E_ACCESSDENIED;
}

bool IsCallable(IDispatch& object, size_t slots) {
  if (!HideIdentityFrom(object)) return false;
  UINT count = 0;
  ComPtr<ITypeInfo> info;
  if (FAILED(object.GetTypeInfoCount(&count)) || count == 0 ||
      FAILED(object.GetTypeInfo(0, LOCALE_SYSTEM_DEFAULT, info.Receive())) || !info) {
    return true;
  }
  return HideIdentityFrom(*info.Get()) && !DescribesShorterTable(*info.Get(), slots);
}

}  // namespace quillo
