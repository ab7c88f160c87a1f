#include "host/client/client_object.h"

#include <cwchar>
#include <string_view>

#include "host/base/text.h"
#include "host/client/fonts_file.h"

namespace quillo::host {

namespace {

using Json = nlohmann::ordered_json;

std::wstring_view View(BSTR text) { return {text, SysStringLen(text)}; }
std::string Text(BSTR text) { return ToUtf8(View(text)); }

Json Describe(const PageDescription& page) {
  return {{"path", ToUtf8(page.file)}, {"kind", page.kind},          {"width", page.width},
          {"height", page.height},     {"mode", page.mode},          {"x_dpi", page.x_dpi},
          {"y_dpi", page.y_dpi},       {"text_runs", page.text_runs}};
}

std::wstring PageFileName(int number) {
  wchar_t name[32];
  std::swprintf(name, std::size(name), L"page-%04d.emf", number);
  return name;
}

}  // namespace

HRESULT ClientObject::NotifyFontsFile(BSTR printer, LONG job, LONG zero, BSTR path) {
  Json call{{"method", "NotifyFontsFile"},
            {"printer", Text(printer)},
            {"job", job},
            {"zero", zero},
            {"path", Text(path)}};
  Json fonts = Json::array();
  const HRESULT result = ReadFontsFile(path, [&fonts](const LOGFONTW& font) {
    fonts.push_back({{"face", ToUtf8(font.lfFaceName)},
                     {"height", font.lfHeight},
                     {"weight", font.lfWeight},
                     {"italic", font.lfItalic != 0}});
  });
  if (FAILED(result)) {
    call["copy_error"] = static_cast<uint32_t>(result);
  } else {
    call["fonts"] = std::move(fonts);
  }
  return Answer(call);
}

HRESULT ClientObject::NotifyJobStart(BSTR printer, LONG job, BSTR document) {
  return Answer({{"method", "NotifyJobStart"},
                 {"printer", Text(printer)},
                 {"job", job},
                 {"document", Text(document)}});
}

HRESULT ClientObject::NotifyDocumentEnd(BSTR printer, LONG job) {
  return Answer({{"method", "NotifyDocumentEnd"}, {"printer", Text(printer)}, {"job", job}});
}

HRESULT ClientObject::NotifyPageStart(BSTR printer, LONG job, IQuilloPage* page) {
  return Answer({{"method", "NotifyPageStart"},
                 {"printer", Text(printer)},
                 {"job", job},
                 {"page", NumberOf(page)}});
}

HRESULT ClientObject::NotifyPage(BSTR printer, LONG job, IQuilloPage* page) {
  const int number = NumberOf(page);
  if (fault_ == ClientFault::kDying) TerminateProcess(GetCurrentProcess(), 1);
  if (fault_ == ClientFault::kHanging && number == 1) Sleep(3000);
  Json call{{"method", "NotifyPage"}, {"printer", Text(printer)}, {"job", job}, {"page", number}};
  if (number != 0) {
    call["page_object"] = Describe(page_->Description());
    CopyTo(call, page_->Description().file, PageFileName(number));
  }
  return Answer(call);
}

HRESULT ClientObject::NotifyJobEnd(BSTR printer, LONG job) {
  return Answer({{"method", "NotifyJobEnd"}, {"printer", Text(printer)}, {"job", job}});
}

HRESULT ClientObject::NotifyEmbeddedFont(BSTR path) {
  Json call{{"method", "NotifyEmbeddedFont"}, {"path", Text(path)}};
  CopyTo(call, std::wstring(View(path)), std::filesystem::path(View(path)).filename().wstring());
  return Answer(call);
}

HRESULT ClientObject::NotifyError(BSTR printer, LONG job, LONG code) {
  return Answer(
      {{"method", "NotifyError"}, {"printer", Text(printer)}, {"job", job}, {"code", code}});
}

HRESULT ClientObject::GetPageObject(IQuilloPage** page) {
  if (page == nullptr) return E_POINTER;
  *page = nullptr;
  const HRESULT result = Answer({{"method", "GetPageObject"}, {"page", pages_ + 1}});
  if (FAILED(result)) return result;
  served_page_.reset();
  page_.Reset(new PageObject(++pages_, fault_ != ClientFault::kWithoutTextRuns));
  served_page_.emplace(*page_.Get());
  page_->AddRef();
  *page = page_.Get();
  return S_OK;
}

HRESULT ClientObject::Answer(const Json& call) {
  const std::lock_guard lock(mutex_);
  report_(call);
  return fault_ == ClientFault::kFailing ? E_FAIL : S_OK;
}

void ClientObject::CopyTo(Json& call, const std::wstring& from, const std::wstring& name) {
  if (CopyFileW(from.c_str(), (folder_ / name).c_str(), FALSE)) {
    call["file"] = ToUtf8(name);
  } else {
    call["copy_error"] = GetLastError();
  }
}

int ClientObject::NumberOf(IQuilloPage* page) const {
  return page != nullptr && page == page_.Get() ? page_->Number() : 0;
}

}  // namespace quillo::host
