// The class object and the broker object in this process: who is answered for, what is counted, and when the quit
// message is posted.
#include <gtest/gtest.h>

#include <memory>
#include <thread>

#include "broker/BrokerFactory.h"
#include "broker/BrokerServer.h"
#include "tests/support/BrokerProcess.h"
#include "tests/support/ByteArray.h"
#include "tests/support/CountFixture.h"
#include "tests/support/TestFiles.h"
#include "tests/support/UnavailableClass.h"

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

  ComPtr<ILumenBroker6> Create() {
    ComPtr<ILumenBroker6> object;
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_ILumenBroker6, reinterpret_cast<void**>(object.GetAddressOf())),
              S_OK);
    return object;
  }

  inline static std::unique_ptr<ComInitializer> apartment;
  CoLumenBrokerServer::Factory* const factory = CurrentFactory();
};

TEST_F(BrokerObject, InterfacesThatAreAnsweredForAndNoOthers) {
  const ComPtr<ILumenBroker6> object = Create();
  for (const IID& iid : {IID_IUnknown, IID_IDispatch, IID_ILumenBroker6}) {
    ComPtr<IUnknown> found;
    EXPECT_EQ(object.CopyTo(iid, reinterpret_cast<void**>(found.GetAddressOf())), S_OK);
    EXPECT_EQ(found.Get(), object.Get());
  }
  for (const IID& iid : {IID_ILumenBroker, IID_ILumenBroker5, IID_IMarshal}) {
    void* none = this;
    EXPECT_EQ(object->QueryInterface(iid, &none), E_NOINTERFACE);
    EXPECT_EQ(none, nullptr);
  }
  void* none = factory;
  EXPECT_EQ(factory->QueryInterface(IID_ILumenBroker6, &none), E_NOINTERFACE);
  EXPECT_EQ(factory->CreateInstance(factory, IID_IUnknown, &none), CLASS_E_NOAGGREGATION);
}

TEST_F(BrokerObject, RefusedInterfaceIsALastReleaseToo) {
  ComPtr<ILumenBroker6> other = Create();
  for (const bool last : {false, true}) {
    void* none = this;
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_ILumenBroker5, &none), E_NOINTERFACE);
    EXPECT_EQ(QuitWasPosted(), last);
    other.Reset();
    EXPECT_EQ(QuitWasPosted(), !last);
  }
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

TEST_F(BrokerObject, TheServerNeedsItsOwnApartmentAndPublication) {
  EXPECT_EQ(RegisterBrokerClassObject(1, nullptr), E_FAIL);
  EXPECT_EQ(RunBrokerServer(nullptr), kFailed);
  UINT exitCode = 0;
  std::thread multithreaded([&exitCode] {
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
    exitCode = RunBrokerServer(nullptr);
    CoUninitialize();
  });
  multithreaded.join();
  EXPECT_EQ(exitCode, kFailed);
}

TEST_F(BrokerObject, ManyRoundsLeaveNothingBehind) {
  const UnavailableClass zones{{0x0968E258, 0x16C7, 0x4DBA, {0xAA, 0x86, 0x46, 0x2D, 0xD6, 0x1E, 0x31, 0xA3}}};
  const testing_files::CleanDirectory directory(testing_files::PlayerDirectory());
  const auto name = [&](const wchar_t* leaf) { return BString(WideView(directory.Path() + L"\\" + leaf)); };
  const ByteArray program(testing_files::ProgramImage());
  EXPECT_TRUE(LeavesNothing(40, [&](int) {
    const ComPtr<ILumenBroker6> broker = Create();
    ULONG cookie = 0, attributes = 0;
    BString found;
    EXPECT_EQ(broker->BrokerCreateFile(name(L"a.exe").Get(), 0, 1, &cookie), E_ACCESSDENIED);
    EXPECT_EQ(broker->BrokerCreateFile(name(L"a.dll").Get(), 0, 1, &cookie), S_OK);
    EXPECT_EQ(broker->BrokerWriteFile(cookie, program.Get(), &attributes), E_FAIL);
    EXPECT_EQ(broker->BrokerCreateFile(name(L"a.sol").Get(), 0, 1, &cookie), S_OK);
    EXPECT_EQ(broker->BrokerCloseHandle(cookie), S_OK);
    EXPECT_EQ(broker->BrokerMoveFileEx(name(L"a.sol").Get(), name(L"b.sol").Get(), 1), S_OK);
    EXPECT_EQ(broker->BrokerFindFirstFile(name(L"*").Get(), found.Receive(), &attributes, &cookie), S_OK);
    EXPECT_EQ(broker->BrokerFindClose(cookie), S_OK);
    EXPECT_EQ(broker->BrokerDeleteFile(name(L"b.sol").Get()), S_OK);
  }));
  // The measure itself: one event kept in every fifth round is seen.
  std::vector<KernelHandle> events;
  EXPECT_FALSE(LeavesNothing(40, [&events](int i) {
    if (i % 5 == 0) events.emplace_back(CreateEventW(nullptr, TRUE, FALSE, nullptr));
  }));
}

}  // namespace
