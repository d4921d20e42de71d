// The stand-ins of enterprise data protection, in place for a suite. See ProtectionTestMain.cpp for how they get there.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "broker/BrokerFileProtectionInfo.h"
#include "broker/CoLumenBrokerServer.h"
#include "broker/Task.h"
#include "engine/ComSupport.h"
#include "tests/fakes/FakeControls.h"
#include "tests/fakes/SlotFake.h"
#include "tests/support/TestFiles.h"

// The controls of a stand-in that is loaded already, or can be.
inline FakeControls& ControlsOf(const wchar_t* library) {
  const HMODULE module = LoadLibraryW(library);
  using Get = FakeControls*();
  return *reinterpret_cast<Get*>(reinterpret_cast<void*>(GetProcAddress(module, "GetControls")))();
}

// Makes this thread serve a call of a client, as COM does for the length of a real one.
class ServedCall final : public SlotFake<IServerSecurity> {
 public:
  ServedCall() {
    On(&IServerSecurity::ImpersonateClient,
       [](void*) -> HRESULT { return ImpersonateSelf(SecurityImpersonation) ? S_OK : E_FAIL; });
    On(&IServerSecurity::RevertToSelf, [](void*) -> HRESULT { return ::RevertToSelf() ? S_OK : E_FAIL; });
    CoSwitchCallContext(Get(), &previous_);
  }
  ~ServedCall() override {
    IUnknown* self = nullptr;
    CoSwitchCallContext(previous_, &self);
  }

 private:
  IUnknown* previous_ = nullptr;
};

class ProtectionTest : public testing::Test {
 protected:
  ProtectionTest()
      : srp(ControlsOf(L"C:\\windows\\system32\\srpapi.dll")),
        efs(ControlsOf(L"C:\\windows\\system32\\efswrt.dll")),
        data(ControlsOf(L"C:\\windows\\system32\\lumenfake.dll")) {
    srp = {};
    efs = {};
    data = {};
    testing_files::WriteWhole(path, "content");
  }
  ~ProtectionTest() override { StopTask(); }

  // A broker object whose server has the identities set so far.
  static ComPtr<ILumenBroker6> NewBroker() { return Adopt<ILumenBroker6>(new CoLumenBrokerServer(nullptr)); }

  ComInitializer apartment;
  FakeControls& srp;
  FakeControls& efs;
  FakeControls& data;
  testing_files::CleanDirectory directory{testing_files::PlayerDirectory()};
  WideString path = directory.Path() + L"\\a.sol";
};
