#pragma once

#include "base/windows.h"

#include <atomic>
#include <oaidl.h>

namespace quillo::host {

/// Reference counting and a mute IDispatch for an object of one interface. Made with one reference.
template <typename Interface>
class ComObject : public Interface {
 public:
  ComObject() = default;
  ComObject(const ComObject&) = delete;
  ComObject& operator=(const ComObject&) = delete;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
    if (object == nullptr) return E_POINTER;
    const bool known = IsEqualIID(id, __uuidof(IUnknown)) || IsEqualIID(id, __uuidof(IDispatch)) ||
                       IsEqualIID(id, __uuidof(Interface));
    *object = known ? this : nullptr;
    if (!known) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    if (count == nullptr) return E_POINTER;
    *count = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
    return DISP_E_UNKNOWNNAME;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                   UINT*) override {
    return DISP_E_MEMBERNOTFOUND;
  }

 protected:
  virtual ~ComObject() = default;

 private:
  std::atomic<ULONG> references_ = 1;
};

}  // namespace quillo::host
