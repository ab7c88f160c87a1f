#pragma once

#include "base/windows.h"

#include <oaidl.h>

#include "base/com_owners.h"

// The client application's COM interfaces as the driver calls them, slot by slot. Slots 0 to 6 are
// IUnknown and IDispatch; strings are BSTRs that the driver allocates and frees around the call.
namespace quillo {

/// What the client hands out for each page. Besides these, a page may have a late-bound property
/// "TextRuns".
struct IQuilloPage : IDispatch {
  virtual HRESULT STDMETHODCALLTYPE SetFile(BSTR path, LONG kind) = 0;  // 7; kind 1
  virtual HRESULT STDMETHODCALLTYPE Reserved8() = 0;
  virtual HRESULT STDMETHODCALLTYPE Reserved9() = 0;
  virtual HRESULT STDMETHODCALLTYPE SetWidth(double tenths_of_millimetre) = 0;  // 10
  virtual HRESULT STDMETHODCALLTYPE Reserved11() = 0;
  virtual HRESULT STDMETHODCALLTYPE SetHeight(double tenths_of_millimetre) = 0;  // 12
  virtual HRESULT STDMETHODCALLTYPE SetMode(LONG mode) = 0;                      // 13; mode 3
  virtual HRESULT STDMETHODCALLTYPE Reserved14() = 0;
  virtual HRESULT STDMETHODCALLTYPE SetResolutionX(LONG dpi) = 0;  // 15
  virtual HRESULT STDMETHODCALLTYPE Reserved16() = 0;
  virtual HRESULT STDMETHODCALLTYPE SetResolutionY(LONG dpi) = 0;  // 17
};

/// The client application's callback object.
struct IQuilloClient : IDispatch {
  virtual HRESULT STDMETHODCALLTYPE Reserved7() = 0;
  virtual HRESULT STDMETHODCALLTYPE NotifyFontsFile(BSTR printer, LONG job, LONG zero,
                                                    BSTR path) = 0;  // 8
  virtual HRESULT STDMETHODCALLTYPE NotifyJobStart(BSTR printer, LONG job,
                                                   BSTR document) = 0;              // 9
  virtual HRESULT STDMETHODCALLTYPE NotifyDocumentEnd(BSTR printer, LONG job) = 0;  // 10
  virtual HRESULT STDMETHODCALLTYPE NotifyPageStart(BSTR printer, LONG job,
                                                    IDispatch* page) = 0;  // 11
  virtual HRESULT STDMETHODCALLTYPE NotifyPage(BSTR printer, LONG job,
                                               IDispatch* page) = 0;                     // 12
  virtual HRESULT STDMETHODCALLTYPE NotifyJobEnd(BSTR printer, LONG job) = 0;            // 13
  virtual HRESULT STDMETHODCALLTYPE NotifyEmbeddedFont(BSTR path) = 0;                   // 14
  virtual HRESULT STDMETHODCALLTYPE NotifyError(BSTR printer, LONG job, LONG code) = 0;  // 15
  virtual HRESULT STDMETHODCALLTYPE GetPageObject(IDispatch** page) = 0;                 // 16
};

/// {7A3E5D12-9B41-4C6F-A8D2-3F5B9C0E1D47}
inline constexpr IID kClientInterfaceId = {
    0x7A3E5D12, 0x9B41, 0x4C6F, {0xA8, 0xD2, 0x3F, 0x5B, 0x9C, 0x0E, 0x1D, 0x47}};

/// The code that NotifyError carries: a page metafile could not be created or closed.
inline constexpr LONG kPageError = -295;

}  // namespace quillo
