#pragma once

#include "base/windows.h"

#include <filesystem>
#include <functional>
#include <mutex>
#include <nlohmann/json.hpp>
#include <optional>

#include "base/com_owners.h"
#include "host/client/client_fault.h"
#include "host/client/com_object.h"
#include "host/client/page_object.h"
#include "host/client/served_object.h"
#include "interface/quillo.h"

namespace quillo::host {

/// The client application's callback object: copies pages and fonts into a folder while the driver
/// waits, and passes every call to `report`, one at a time and in order.
///
/// A report is an object with the member "method" and the call's arguments; pages and fonts have
/// "file" (in the folder) when they were copied, "copy_error" (a Windows error code) when not.
class ClientObject : public ComObject<IQuilloClient> {
 public:
  using Report = std::function<void(const nlohmann::ordered_json&)>;
  ClientObject(std::filesystem::path folder, ClientFault fault, Report report)
      : folder_(std::move(folder)), fault_(fault), report_(std::move(report)) {}

  HRESULT STDMETHODCALLTYPE Reserved7() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE NotifyFontsFile(BSTR printer, LONG job, LONG zero, BSTR path) override;
  HRESULT STDMETHODCALLTYPE NotifyJobStart(BSTR printer, LONG job, BSTR document) override;
  HRESULT STDMETHODCALLTYPE NotifyDocumentEnd(BSTR printer, LONG job) override;
  HRESULT STDMETHODCALLTYPE NotifyPageStart(BSTR printer, LONG job, IQuilloPage* page) override;
  HRESULT STDMETHODCALLTYPE NotifyPage(BSTR printer, LONG job, IQuilloPage* page) override;
  HRESULT STDMETHODCALLTYPE NotifyJobEnd(BSTR printer, LONG job) override;
  HRESULT STDMETHODCALLTYPE NotifyEmbeddedFont(BSTR path) override;
  HRESULT STDMETHODCALLTYPE NotifyError(BSTR printer, LONG job, LONG code) override;
  HRESULT STDMETHODCALLTYPE GetPageObject(IQuilloPage** page) override;

 private:
  /// Reports a call and returns its result.
  HRESULT Answer(const nlohmann::ordered_json& call);
  void CopyTo(nlohmann::ordered_json& call, const std::wstring& from, const std::wstring& name);
  /// The number of a page object of this client; 0 for any other.
  int NumberOf(IQuilloPage* page) const;

  const std::filesystem::path folder_;
  const ClientFault fault_;
  const Report report_;
  std::mutex mutex_;         // calls come on COM's threads
  ComPtr<PageObject> page_;  // the latest one
  std::optional<ServedObject> served_page_;
  int pages_ = 0;
};

}  // namespace quillo::host
