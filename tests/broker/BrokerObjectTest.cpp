// What many rounds of a broker object in this process leave behind.
#include <windows.h>

#include <gtest/gtest.h>

#include "broker/CoLumenBrokerServer.h"
#include "tests/fakes/ShellFakes.h"
#include "tests/support/ByteArray.h"
#include "tests/support/PlatformCounts.h"
#include "tests/support/TestFiles.h"

namespace {

TEST(BrokerObject, ManyRoundsLeaveNothingBehind) {
  const ComInitializer apartment;
  const shell_fakes::Registered<shell_fakes::Zone> zones{shell_fakes::kZoneClass};
  const testing_files::CleanDirectory directory(testing_files::PlayerDirectory());
  const auto name = [&](const wchar_t* leaf) { return BString(WideView(directory.Path() + L"\\" + leaf)); };
  const ByteArray program(testing_files::ProgramImage());
  EXPECT_TRUE(LeavesNothing(40, [&](int) {
    const ComPtr<ILumenBroker6> broker = Adopt<ILumenBroker6>(new CoLumenBrokerServer(nullptr));
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
