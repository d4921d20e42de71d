// The class object and the broker object in this process: who is answered for, what is counted, and when the quit
// message is posted.
#include <gtest/gtest.h>

#include <memory>
#include <thread>

#include "broker/BrokerFactory.h"
#include "broker/BrokerServer.h"
#include "tests/support/BrokerProcess.h"
#include "tests/support/CountFixture.h"
#include "tests/support/DispatchCall.h"

namespace {

constexpr UINT kFailed = 0x80004005;

// Takes a posted quit message off this thread's queue.
bool QuitWasPosted() {
  MSG message = {};
  if (!PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE)) return false;
  EXPECT_EQ(message.wParam, 0u);
  return true;
}

// A process publishes its class object once, so the tests share one.
class BrokerObject : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    ASSERT_TRUE(broker_process::Register());
    apartment = std::make_unique<ComInitializer>();
    EXPECT_EQ(RevokeBrokerClassObject(), E_FAIL) << "nothing is published";
    EXPECT_EQ(RegisterBrokerClassObject(0, nullptr), S_OK);
    EXPECT_EQ(CurrentFactory(), nullptr) << "not enabled";
    ASSERT_EQ(RegisterBrokerClassObject(1, nullptr), S_OK);
  }
  static void TearDownTestSuite() {
    EXPECT_EQ(RevokeBrokerClassObject(), S_OK);
    EXPECT_EQ(CurrentFactory(), nullptr);
    EXPECT_EQ(RegisterBrokerClassObject(1, nullptr), E_FAIL) << "the number of the first registration is kept";
    apartment.reset();
  }
  void SetUp() override {
    ASSERT_NE(factory, nullptr);
    EXPECT_TRUE(factory->CanUnload());
  }
  void TearDown() override {
    EXPECT_TRUE(factory->CanUnload()) << "an object or a lock is left";
    (void)QuitWasPosted();
  }

  HRESULT Create(REFIID iid, IUnknown** out) {
    return factory->CreateInstance(nullptr, iid, reinterpret_cast<void**>(out));
  }
  ComPtr<ILumenBroker6> Create() {
    ComPtr<ILumenBroker6> object;
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_ILumenBroker6, reinterpret_cast<void**>(object.GetAddressOf())),
              S_OK);
    return object;
  }

  inline static std::unique_ptr<ComInitializer> apartment;
  CoLumenBrokerServer::Factory* const factory = CurrentFactory();
};

TEST_F(BrokerObject, ClassObjectAnswersForTwoInterfaces) {
  for (const IID& iid : {IID_IUnknown, IID_IClassFactory}) {
    ComPtr<IUnknown> found;
    EXPECT_EQ(factory->QueryInterface(iid, reinterpret_cast<void**>(found.GetAddressOf())), S_OK);
  }
  void* none = factory;
  EXPECT_EQ(factory->QueryInterface(IID_ILumenBroker6, &none), E_NOINTERFACE);
  EXPECT_EQ(none, nullptr);
  EXPECT_EQ(factory->CreateInstance(factory, IID_IUnknown, &none), CLASS_E_NOAGGREGATION);
  EXPECT_FALSE(QuitWasPosted()) << "no object was made";
}

TEST_F(BrokerObject, ObjectAnswersForThreeInterfacesAndIsOneIdentity) {
  const ComPtr<ILumenBroker6> object = Create();
  for (const IID& iid : {IID_IUnknown, IID_IDispatch, IID_ILumenBroker6}) {
    ComPtr<IUnknown> found;
    EXPECT_EQ(object.CopyTo(iid, reinterpret_cast<void**>(found.GetAddressOf())), S_OK);
    EXPECT_EQ(found.Get(), object.Get());
  }
  for (const IID& iid :
       {IID_ILumenBroker, IID_ILumenBroker2, IID_ILumenBroker3, IID_ILumenBroker4, IID_ILumenBroker5, IID_IMarshal}) {
    void* none = this;
    EXPECT_EQ(object->QueryInterface(iid, &none), E_NOINTERFACE);
    EXPECT_EQ(none, nullptr);
  }
}

TEST_F(BrokerObject, RefusedInterfaceIsALastReleaseToo) {
  ComPtr<ILumenBroker6> other = Create();
  ComPtr<IUnknown> none;
  EXPECT_EQ(Create(IID_ILumenBroker5, none.GetAddressOf()), E_NOINTERFACE);
  EXPECT_FALSE(QuitWasPosted());
  other.Reset();
  EXPECT_TRUE(QuitWasPosted());
  EXPECT_EQ(Create(IID_ILumenBroker5, none.GetAddressOf()), E_NOINTERFACE);
  EXPECT_TRUE(QuitWasPosted());
}

TEST_F(BrokerObject, LockKeepsTheServerAndItsRemovalEndsNothing) {
  EXPECT_EQ(factory->LockServer(TRUE), S_OK);
  EXPECT_FALSE(factory->CanUnload());
  Create().Reset();
  EXPECT_FALSE(QuitWasPosted());
  EXPECT_EQ(factory->LockServer(FALSE), S_OK);
  EXPECT_TRUE(factory->CanUnload());
  EXPECT_FALSE(QuitWasPosted()) << "only a release looks";
  Create().Reset();
  EXPECT_TRUE(QuitWasPosted());
}

TEST_F(BrokerObject, SecondPublicationFailsTheServerWithAPlainFailure) {
  EXPECT_EQ(RegisterBrokerClassObject(1, nullptr), E_FAIL);
  EXPECT_EQ(RunBrokerServer(nullptr), kFailed);
}

TEST_F(BrokerObject, ServerNeedsAnApartmentOfItsOwn) {
  UINT exitCode = 0;
  std::thread multithreaded([&exitCode] {
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
    exitCode = RunBrokerServer(nullptr);
    CoUninitialize();
  });
  multithreaded.join();
  EXPECT_EQ(exitCode, kFailed);
}

TEST_F(BrokerObject, DispatchSideIsThatOfTheSecondGeneration) {
  const ComPtr<ILumenBroker6> object = Create();
  const std::pair<const wchar_t*, DISPID> rows[] = {{L"brokercreatefile", 0x60020000},
                                                    {L"BrokerLMIsRunning", 0x60020021},
                                                    {L"BrokerPrefDeleteLumenPlayerVersion", 0x60030002},
                                                    {L"BrokerSaveDialog", DISPID_UNKNOWN}};
  for (const auto& [name, wanted] : rows) {
    auto* text = const_cast<LPOLESTR>(name);
    DISPID id = 0;
    EXPECT_EQ(object->GetIDsOfNames(IID_NULL, &text, 1, LOCALE_NEUTRAL, &id),
              wanted == DISPID_UNKNOWN ? DISP_E_UNKNOWNNAME : S_OK);
    EXPECT_EQ(id, wanted) << ToUtf8(name);
  }
}

TEST_F(BrokerObject, TypeInformationHasOneIndex) {
  const ComPtr<ILumenBroker6> object = Create();
  UINT count = 0;
  EXPECT_EQ(object->GetTypeInfoCount(&count), S_OK);
  EXPECT_EQ(count, 1u);
  ComPtr<ITypeInfo> info;
  EXPECT_EQ(object->GetTypeInfo(0, LOCALE_NEUTRAL, &info), S_OK);
  TYPEATTR* attributes = nullptr;
  ASSERT_EQ(info->GetTypeAttr(&attributes), S_OK);
  EXPECT_TRUE(IsEqualGUID(attributes->guid, IID_ILumenBroker2));
  info->ReleaseTypeAttr(attributes);
  auto* none = reinterpret_cast<ITypeInfo*>(this);
  EXPECT_EQ(object->GetTypeInfo(1, LOCALE_NEUTRAL, &none), DISP_E_BADINDEX);
  EXPECT_EQ(none, nullptr);
}

TEST_F(BrokerObject, ObjectWithoutATypeLibraryStillServes) {
  const LONG removed = RegDeleteKeyA(
      HKEY_LOCAL_MACHINE, "Software\\Classes\\TypeLib\\{FAB3E735-69C7-453B-A446-B6823C6DF1C9}\\1.0\\0\\win32");
  ASSERT_EQ(removed, ERROR_SUCCESS);
  const ComPtr<ILumenBroker6> object = Create();
  EXPECT_EQ(object->BrokerCloseHandle(1), E_INVALIDARG);
  EXPECT_NE(CallByName(object.Get(), L"BrokerCloseHandle", {Argument(ULONG{1})}), S_OK);
  EXPECT_TRUE(broker_process::Register());
}

TEST_F(BrokerObject, ManyObjectsLeaveNoHandlesBehind) {
  EXPECT_TRUE(LeavesNothing(40, [this](int) { Create().Reset(); }));
}

TEST_F(BrokerObject, SaveDialogOfOldTouchesNoArgument) {
  ULONG cookie = 77;
  wchar_t name[] = L"name";
  auto* path = reinterpret_cast<BSTR>(this);
  EXPECT_EQ(Create()->BrokerSaveDialog(1, name, &cookie, &path), E_NOTIMPL);
  EXPECT_EQ(Create()->BrokerSaveDialog(1, nullptr, nullptr, nullptr), E_NOTIMPL);
  EXPECT_EQ(cookie, 77u);
  EXPECT_EQ(path, reinterpret_cast<BSTR>(this));
}

}  // namespace
