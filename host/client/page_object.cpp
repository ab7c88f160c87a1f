#include "host/client/page_object.h"

#include <oleauto.h>

namespace quillo::host {

namespace {

constexpr DISPID kTextRuns = 1;

}  // namespace

HRESULT PageObject::SetFile(BSTR path, LONG kind) {
  description_.file.assign(path, SysStringLen(path));
  description_.kind = kind;
  return S_OK;
}

HRESULT PageObject::SetWidth(double tenths_of_millimetre) {
  description_.width = tenths_of_millimetre;
  return S_OK;
}

HRESULT PageObject::SetHeight(double tenths_of_millimetre) {
  description_.height = tenths_of_millimetre;
  return S_OK;
}

HRESULT PageObject::SetMode(LONG mode) {
  description_.mode = mode;
  return S_OK;
}

HRESULT PageObject::SetResolutionX(LONG dpi) {
  description_.x_dpi = dpi;
  return S_OK;
}

HRESULT PageObject::SetResolutionY(LONG dpi) {
  description_.y_dpi = dpi;
  return S_OK;
}

HRESULT PageObject::GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) {
  if (names == nullptr || ids == nullptr) return E_POINTER;
  for (UINT i = 0; i < count; ++i) ids[i] = DISPID_UNKNOWN;
  if (!takes_text_runs_ || count != 1 || _wcsicmp(names[0], L"TextRuns") != 0) {
    return DISP_E_UNKNOWNNAME;
  }
  ids[0] = kTextRuns;
  return S_OK;
}

HRESULT PageObject::Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* parameters, VARIANT*,
                           EXCEPINFO*, UINT*) {
  if (!takes_text_runs_ || id != kTextRuns || (flags & DISPATCH_PROPERTYPUT) == 0) {
    return DISP_E_MEMBERNOTFOUND;
  }
  if (parameters == nullptr || parameters->cArgs != 1) return DISP_E_BADPARAMCOUNT;
  const VARIANT& value = parameters->rgvarg[0];
  if (V_VT(&value) != (VT_ARRAY | VT_I4) || SafeArrayGetDim(V_ARRAY(&value)) != 1) {
    return DISP_E_TYPEMISMATCH;
  }
  SAFEARRAY* array = V_ARRAY(&value);
  void* data = nullptr;
  const HRESULT result = SafeArrayAccessData(array, &data);
  if (FAILED(result)) return result;
  const auto* first = static_cast<const LONG*>(data);
  description_.text_runs.assign(first, first + array->rgsabound[0].cElements);
  SafeArrayUnaccessData(array);
  return S_OK;
}

}  // namespace quillo::host
