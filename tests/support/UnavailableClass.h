// A COM class that is registered in this apartment and makes no objects. For classes that Wine lacks: each search for
// an unregistered one beyond this process leaves two registry keys open there, which a count of handles would see.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include "engine/ComSupport.h"

class UnavailableClass {
 public:
  explicit UnavailableClass(REFCLSID id) {
    ComPtr<IStream> noFactory;
    EXPECT_EQ(CreateStreamOnHGlobal(nullptr, TRUE, noFactory.GetAddressOf()), S_OK);
    EXPECT_EQ(CoRegisterClassObject(id, noFactory.Get(), CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &registration_),
              S_OK);
  }
  UnavailableClass(const UnavailableClass&) = delete;
  UnavailableClass& operator=(const UnavailableClass&) = delete;
  ~UnavailableClass() { CoRevokeClassObject(registration_); }

 private:
  DWORD registration_ = 0;
};
