#include "support/recording_client.h"

#include <objbase.h>

#include "config/user/user_paths.h"
#include "host/client/client_object.h"
#include "support/built_file.h"

namespace quillo::test {

std::wstring TypeLibrary() { return BuiltFile(L"..\\interface\\quillo.tlb"); }

std::string LineOf(const nlohmann::ordered_json& call) {
  std::string line;
  for (const auto& [name, value] : call.items()) {
    if (name == "path" || name == "copy_error") continue;
    if (!line.empty()) line += ' ';
    line += name == "page_object" ? LineOf(value)
            : value.is_string()   ? value.get<std::string>()
                                  : value.dump();
  }
  return line;
}

template <typename Interface>
int ReleaseLast(ComPtr<Interface>& object) {
  return object && object.Detach()->Release() != 0 ? 1 : 0;
}

/// An object that describes itself as an interface; a null one: not at all.
template <typename Object>
class Described : public Object {
 public:
  template <typename... Arguments>
  explicit Described(const IID* const& table, Arguments&&... arguments)
      : Object(std::forward<Arguments>(arguments)...), table_(table) {}

  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    *count = table_ != nullptr;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo** info) override {
    ComPtr<ITypeLib> library;
    LoadTypeLib(IsEqualIID(*table_, __uuidof(IQuilloPage)) ? TypeLibrary().c_str()
                : IsEqualIID(*table_, __uuidof(IDispatch)) ? L"stdole2.tlb"
                                                           : L"scrrun.dll",
                library.Receive());
    return library->GetTypeInfoOfGuid(*table_, info);
  }

 private:
  const IID* const& table_;
};

namespace {

/// For the standard marshaller. Once: Wine leaks handles each time.
void RegisterTypeLibrary() {
  static ComPtr<ITypeLib> library;
  if (!library) LoadTypeLibEx(TypeLibrary().c_str(), REGKIND_REGISTER, library.Receive());
}

}  // namespace

class RecordingClient::Client : public Described<host::ClientObject> {
 public:
  Client(RecordingClient& owner, host::ClientFault fault)
      : Described(owner.client_table, L"no such folder", fault,
                  [&owner](const auto& call) { owner.Note(call); }),
        owner_(owner) {}

  HRESULT STDMETHODCALLTYPE GetPageObject(IQuilloPage** page) override {
    const HRESULT result = ClientObject::GetPageObject(page);
    if (FAILED(result)) return result;
    if (owner_.page_table != nullptr) {
      (*page)->Release();
      *page = new Described<host::PageObject>(owner_.page_table, 0, false);
    }
    owner_.leaks_ += ReleaseLast(owner_.page_);  // delivered or dropped by now
    owner_.page_.Reset(*page);
    owner_.page_->AddRef();
    return S_OK;
  }

 private:
  RecordingClient& owner_;
};

void RecordingClient::Note(const nlohmann::ordered_json& call) {
  calls.push_back(LineOf(call));
  if (on_call) on_call(call);
}

int RecordingClient::CountLeaks() {
  leaks_ += ReleaseLast(client_);
  return leaks_ += ReleaseLast(page_);
}

void RecordingClient::LeaveConnection(DWORD job_id, bool in_session_folder,
                                      host::ClientFault fault) {
  CountLeaks();
  client_.Reset(new Client(*this, fault));
  RegisterTypeLibrary();
  const std::wstring path = ConnectionPath(job_id, in_session_folder);
  CreateDirectoryW(path.substr(0, path.rfind(L'\\')).c_str(), nullptr);
  ComPtr<IStorage> storage;
  ComPtr<IStream> stream;
  StgCreateDocfile(path.c_str(), STGM_CREATE | STGM_SHARE_EXCLUSIVE | STGM_READWRITE, 0,
                   storage.Receive());
  storage->CreateStream(L"IQuilloConnectionPiont", STGM_CREATE | STGM_SHARE_EXCLUSIVE | STGM_WRITE,
                        0, 0, stream.Receive());
  CoMarshalInterface(stream.Get(), __uuidof(IQuilloClient), client_.Get(), MSHCTX_LOCAL, nullptr,
                     MSHLFLAGS_NORMAL);
}

std::wstring TempFolder() {
  wchar_t folder[MAX_PATH] = {};
  UserTempFolder(folder, MAX_PATH);
  std::wstring text = folder;
  while (text.ends_with(L'\\')) text.pop_back();
  return text;
}

std::wstring ConnectionPath(DWORD job_id, bool in_session_folder) {
  std::wstring folder = TempFolder();
  DWORD session = 0;
  if (in_session_folder && PrintingUserSession(session)) {
    folder += L"\\" + std::to_wstring(session);
  }
  return folder + L"\\" + std::to_wstring(job_id) + L".stg";
}

}  // namespace quillo::test
