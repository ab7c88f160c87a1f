#include "support/recording_client.h"

#include <objbase.h>

#include "config/user/user_paths.h"
#include "host/client/com_object.h"
#include "interface/quillo.h"
#include "job/compound_file.h"

namespace quillo::test {

namespace {

std::string Narrow(const wchar_t* text) {
  std::string narrow;
  for (; text != nullptr && *text != L'\0'; ++text) narrow += static_cast<char>(*text);
  return narrow;
}

constexpr DISPID kTextRuns = 7;

/// In one process the object itself is passed.
template <typename Interface>
class Passed : public host::ComObject<Interface> {
 public:
  Passed() { CoCreateFreeThreadedMarshaler(this, marshaler_.Receive()); }
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** out) override {
    return id == IID_IMarshal ? marshaler_->QueryInterface(id, out)
                              : host::ComObject<Interface>::QueryInterface(id, out);
  }

 private:
  ComPtr<IUnknown> marshaler_;
};

}  // namespace

class RecordingClient::Page : public Passed<IQuilloPage> {
 public:
  explicit Page(RecordingClient& owner) : owner_(owner) { ++owner_.living_pages_; }
  ~Page() override { --owner_.living_pages_; }

  HRESULT STDMETHODCALLTYPE SetFile(BSTR path, LONG kind) override {
    file = path;
    return Note(Line("  file kind ", kind));
  }
  HRESULT STDMETHODCALLTYPE SetWidth(double value) override {
    return Note(Line("  width ", value));
  }
  HRESULT STDMETHODCALLTYPE SetHeight(double value) override {
    return Note(Line("  height ", value));
  }
  HRESULT STDMETHODCALLTYPE SetMode(LONG mode) override { return Note(Line("  mode ", mode)); }
  HRESULT STDMETHODCALLTYPE SetResolutionX(LONG dpi) override {
    return Note(Line("  x dpi ", dpi));
  }
  HRESULT STDMETHODCALLTYPE SetResolutionY(LONG dpi) override {
    return Note(Line("  y dpi ", dpi));
  }
  HRESULT STDMETHODCALLTYPE Reserved8() override { return Note("  RESERVED 8"); }
  HRESULT STDMETHODCALLTYPE Reserved9() override { return Note("  RESERVED 9"); }
  HRESULT STDMETHODCALLTYPE Reserved11() override { return Note("  RESERVED 11"); }
  HRESULT STDMETHODCALLTYPE Reserved14() override { return Note("  RESERVED 14"); }
  HRESULT STDMETHODCALLTYPE Reserved16() override { return Note("  RESERVED 16"); }

  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID,
                                          DISPID* ids) override {
    if (!owner_.has_text_runs || lstrcmpW(names[0], L"TextRuns") != 0) return DISP_E_UNKNOWNNAME;
    ids[0] = kTextRuns;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* parameters,
                                   VARIANT*, EXCEPINFO*, UINT*) override {
    if (id != kTextRuns || flags != DISPATCH_PROPERTYPUT || parameters->cArgs != 1 ||
        parameters->rgvarg[0].vt != (VT_ARRAY | VT_I4)) {
      return E_INVALIDARG;
    }
    SAFEARRAY* array = parameters->rgvarg[0].parray;
    std::vector<int> counts(array->rgsabound[0].cElements);
    for (LONG i = 0; i < static_cast<LONG>(counts.size()); ++i) {
      SafeArrayGetElement(array, &i, &counts[static_cast<size_t>(i)]);
    }
    owner_.text_runs.push_back(counts);
    return owner_.text_runs_answer;
  }

  std::wstring file;

 private:
  HRESULT Note(const std::string& line) {
    owner_.calls.push_back(line);
    return owner_.answer;
  }

  RecordingClient& owner_;
};

class RecordingClient::Client : public Passed<IQuilloClient> {
 public:
  explicit Client(RecordingClient& owner) : owner_(owner) {}

  HRESULT STDMETHODCALLTYPE Reserved7() override { return Note("RESERVED 7"); }
  HRESULT STDMETHODCALLTYPE NotifyFontsFile(BSTR printer, LONG job, LONG zero, BSTR path) override {
    if (owner_.on_fonts_file) owner_.on_fonts_file(path);
    return Note(Line("NotifyFontsFile ", Subject(printer, job), " ", zero));
  }
  HRESULT STDMETHODCALLTYPE NotifyJobStart(BSTR printer, LONG job, BSTR document) override {
    return Note(Line("NotifyJobStart ", Subject(printer, job), " ", Narrow(document)));
  }
  HRESULT STDMETHODCALLTYPE NotifyDocumentEnd(BSTR printer, LONG job) override {
    return Note("NotifyDocumentEnd " + Subject(printer, job));
  }
  HRESULT STDMETHODCALLTYPE NotifyPageStart(BSTR printer, LONG job, IQuilloPage* page) override {
    return Note(Line("NotifyPageStart ", Subject(printer, job), " ", Number(page)));
  }
  HRESULT STDMETHODCALLTYPE NotifyPage(BSTR printer, LONG job, IQuilloPage* page) override {
    if (owner_.on_page_file) owner_.on_page_file(static_cast<Page*>(page)->file.c_str());
    return Note(Line("NotifyPage ", Subject(printer, job), " ", Number(page)));
  }
  HRESULT STDMETHODCALLTYPE NotifyJobEnd(BSTR printer, LONG job) override {
    if (owner_.on_job_end) owner_.on_job_end();
    return Note("NotifyJobEnd " + Subject(printer, job));
  }
  HRESULT STDMETHODCALLTYPE NotifyEmbeddedFont(BSTR path) override {
    Note("NotifyEmbeddedFont");
    return owner_.on_embedded_font ? owner_.on_embedded_font(path) : owner_.answer;
  }
  HRESULT STDMETHODCALLTYPE NotifyError(BSTR printer, LONG job, LONG code) override {
    return Note(Line("NotifyError ", Subject(printer, job), " ", code));
  }
  HRESULT STDMETHODCALLTYPE GetPageObject(IQuilloPage** page) override {
    *page = nullptr;
    if (FAILED(Note("GetPageObject"))) return owner_.answer;
    *page = last_page_ = new Page(owner_);
    ++pages_;
    return S_OK;
  }

 private:
  HRESULT Note(const std::string& line) {
    owner_.calls.push_back(line);
    return owner_.answer;
  }
  static std::string Subject(BSTR printer, LONG job) { return Line(Narrow(printer), "/", job); }
  std::string Number(IQuilloPage* page) const {
    if (page == nullptr) return "no page";
    return page == last_page_ ? Line("page ", pages_) : "A FOREIGN PAGE";
  }

  RecordingClient& owner_;
  IQuilloPage* last_page_ = nullptr;
  int pages_ = 0;
};

RecordingClient::RecordingClient() : client_(new Client(*this)) {}
RecordingClient::~RecordingClient() { client_->Release(); }

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

void RecordingClient::LeaveConnection(DWORD job_id, bool in_session_folder) {
  const std::wstring path = ConnectionPath(job_id, in_session_folder);
  CreateDirectoryW(path.substr(0, path.rfind(L'\\')).c_str(), nullptr);
  ComPtr<IStorage> storage;
  ComPtr<IStream> stream;
  StgCreateDocfile(path.c_str(), STGM_CREATE | STGM_SHARE_EXCLUSIVE | STGM_READWRITE, 0,
                   storage.Receive());
  storage->CreateStream(L"IQuilloConnectionPiont", STGM_CREATE | STGM_SHARE_EXCLUSIVE | STGM_WRITE,
                        0, 0, stream.Receive());
  CoMarshalInterface(stream.Get(), __uuidof(IQuilloClient), client_, MSHCTX_INPROC, nullptr,
                     MSHLFLAGS_NORMAL);
}

}  // namespace quillo::test
