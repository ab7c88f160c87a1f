#pragma once

#include "base/windows.h"

#include <string>
#include <vector>

#include "host/client/com_object.h"
#include "interface/quillo.h"

namespace quillo::host {

/// What the driver reports about a page.
struct PageDescription {
  std::wstring file;
  LONG kind = 0;
  double width = 0;  // of the sheet, 0.1 mm
  double height = 0;
  LONG mode = 0;
  LONG x_dpi = 0;
  LONG y_dpi = 0;
  std::vector<LONG> text_runs;  // glyphs of each text run
};

/// Keeps what the driver reports about one page.
class PageObject : public ComObject<IQuilloPage> {
 public:
  /// `number` counts the job's pages from 1. `takes_text_runs`: whether it has
  /// the property TextRuns.
  PageObject(int number, bool takes_text_runs)
      : number_(number), takes_text_runs_(takes_text_runs) {}

  int Number() const { return number_; }
  const PageDescription& Description() const { return description_; }

  HRESULT STDMETHODCALLTYPE SetFile(BSTR path, LONG kind) override;
  HRESULT STDMETHODCALLTYPE Reserved8() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Reserved9() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetWidth(double tenths_of_millimetre) override;
  HRESULT STDMETHODCALLTYPE Reserved11() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetHeight(double tenths_of_millimetre) override;
  HRESULT STDMETHODCALLTYPE SetMode(LONG mode) override;
  HRESULT STDMETHODCALLTYPE Reserved14() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetResolutionX(LONG dpi) override;
  HRESULT STDMETHODCALLTYPE Reserved16() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetResolutionY(LONG dpi) override;

  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID,
                                          DISPID* ids) override;
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* parameters,
                                   VARIANT* result, EXCEPINFO* exception, UINT* argument) override;

 private:
  const int number_;
  const bool takes_text_runs_;
  PageDescription description_;
};

}  // namespace quillo::host
