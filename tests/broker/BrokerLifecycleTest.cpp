// The server's life as clients see it: COM starts it, its last release ends it, and nothing else does.
#include "tests/support/BrokerProcess.h"
#include "tests/support/DispatchCall.h"
#include "tests/support/StartProcess.h"
#include "tests/support/TestFiles.h"

namespace {

using broker_process::EndsByItself;

using BrokerLifecycle = BrokerProcessTest;

// A file in the player's own directory, which the broker lets its clients write.
WideString PlayerFile(const wchar_t* name) {
  testing_files::MakeDirectories(testing_files::PlayerDirectory());
  return testing_files::PlayerDirectory() + L"\\" + name;
}

TEST_F(BrokerLifecycle, ScriptReachesTheSecondGenerationByName) {
  ComPtr<IDispatch> script;
  ASSERT_EQ(broker.CopyTo(IID_IDispatch, reinterpret_cast<void**>(script.GetAddressOf())), S_OK);
  const BString file(WideView(PlayerFile(L"script.sol")));
  ULONG cookie = 0;
  EXPECT_EQ(CallByName(script.Get(), L"BrokerCreateFile",
                       {Argument(file.Get()), Argument(0L), Argument(1L), Argument(&cookie)}),
            S_OK);
  EXPECT_EQ(cookie, 1u);
  EXPECT_EQ(CallByName(script.Get(), L"brokerclosehandle", {Argument(cookie)}), S_OK);
  EXPECT_EQ(CallByName(script.Get(), L"BrokerSaveDialog2", {}), DISP_E_UNKNOWNNAME);
}

TEST_F(BrokerLifecycle, KilledClientLeavesTheServerServingOthers) {
  const KernelHandle client =
      StartProcess(L"\"" + broker_process::BuildFolder() + L"\\bin\\lumenctl.exe\" lcd listen doomed");
  LONG format = 0;
  while (broker->BrokerLcdFindConnectionFormat(BString(L"doomed").Get(), 0, &format) != S_OK) {
    ASSERT_EQ(WaitForSingleObject(client.Get(), 1), static_cast<DWORD>(WAIT_TIMEOUT));
  }
  TerminateProcess(client.Get(), 1);
  ASSERT_TRUE(EndsByItself(client));
  ULONG cookie = 0;
  EXPECT_EQ(broker->BrokerCreateFile(BString(PlayerFile(L"living.sol").c_str()).Get(), FALSE, TRUE, &cookie), S_OK);
  EXPECT_EQ(cookie, 1u);
  EXPECT_EQ(broker->BrokerCloseHandle(cookie), S_OK);
  // The platform releases a dead client's references after minutes at best; this test does not wait for it.
  broker.Reset();
  broker_process::TellToQuit(server);
}

TEST_F(BrokerLifecycle, TwoClientsShareTheServerAndNoCookies) {
  const WideString file = PlayerFile(L"second.sol");
  ComPtr<ILumenBroker6> other;
  ASSERT_EQ(broker_process::Activate(other), S_OK);
  ULONG cookie = 0;
  ASSERT_EQ(other->BrokerCreateFile(BString(WideView(file)).Get(), FALSE, TRUE, &cookie), S_OK);
  ASSERT_EQ(broker->BrokerCreateFile(BString(PlayerFile(L"first.sol").c_str()).Get(), FALSE, TRUE, &cookie), S_OK);
  EXPECT_EQ(cookie, 1u) << "the other's is its own first";
  EXPECT_EQ(broker->BrokerCloseHandle(2), E_INVALIDARG);
  other.Reset();
  const auto opens = [&file] {
    return FileHandle(CreateFileW(file.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr)).IsValid();
  };
  EXPECT_FALSE(opens()) << "the handle outlives its client while the server serves another";
  EXPECT_EQ(broker->BrokerCloseHandle(cookie), S_OK);
  broker.Reset();
  ASSERT_TRUE(EndsByItself(server));
  EXPECT_TRUE(opens());
}

}  // namespace
