// A COM class that is registered in this apartment and makes no objects. For classes that Wine lacks: each search for
// an unregistered one beyond this process leaves two registry keys open there, which a count of handles would see.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>
#include <unknwn.h>

class UnavailableClass final : public IClassFactory {
 public:
  explicit UnavailableClass(REFCLSID id) {
    EXPECT_EQ(CoRegisterClassObject(id, this, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &registration_), S_OK);
  }
  UnavailableClass(const UnavailableClass&) = delete;
  UnavailableClass& operator=(const UnavailableClass&) = delete;
  virtual ~UnavailableClass() { CoRevokeClassObject(registration_); }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
    const bool known = iid == IID_IUnknown || iid == IID_IClassFactory;
    *out = known ? this : nullptr;
    return known ? S_OK : E_NOINTERFACE;
  }
  // Owned by its scope.
  ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID, void** out) override {
    *out = nullptr;
    return REGDB_E_CLASSNOTREG;
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

 private:
  DWORD registration_ = 0;
};
