// The directory of the machine: real names, a real lock, and processes that share no more than those.
#include "connections/Win32LcdAccessor.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "engine/WideText.h"

namespace {

constexpr DWORD kPatience = 60000;

KernelHandle Start(const std::string& arguments) {
  char own[MAX_PATH] = {};
  GetModuleFileNameA(nullptr, own, MAX_PATH);
  const std::string folder(own, static_cast<size_t>(strrchr(own, '\\') - own + 1));
  std::string command =
      "\"" + folder + arguments.substr(0, arguments.find(' ')) + ".exe\"" + arguments.substr(arguments.find(' '));
  STARTUPINFOA startup = {};
  startup.cb = sizeof(startup);
  PROCESS_INFORMATION child = {};
  if (!CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &child))
    return {};
  KernelHandle(child.hThread).Reset();
  return KernelHandle(child.hProcess);
}

DWORD ExitCode(const KernelHandle& process) {
  DWORD code = STILL_ACTIVE;
  WaitForSingleObject(process.Get(), kPatience);
  GetExitCodeProcess(process.Get(), &code);
  return code;
}

bool WaitForSignal(const char* name) {
  const KernelHandle event(CreateEventA(nullptr, TRUE, FALSE, name));
  return WaitForSingleObject(event.Get(), kPatience) == WAIT_OBJECT_0;
}

// The segment as a test sees it from outside.
class View {
 public:
  View()
      : mapping(CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, sizeof(LcdSegment),
                                   "HalcyonicsFMOmega")),
        view(MapViewOfFile(mapping.Get(), FILE_MAP_ALL_ACCESS, 0, 0, 0)) {}
  LcdSegment* operator->() const { return static_cast<LcdSegment*>(view.Get()); }

 private:
  KernelHandle mapping;
  MappedView view;
};

TEST(Win32LcdAccessor, ASegmentOfAnotherLayoutIsRefusedForGood) {
  const View other;
  other->layoutVersion = 2;
  Win32LcdAccessor directory;
  EXPECT_EQ(directory.Lock(), 0);
  EXPECT_FALSE(directory.TryAddConnection("a", 0, 0, '1'));
  other->layoutVersion = 1;
  EXPECT_EQ(directory.Lock(), 0) << "it is not tried again";
  EXPECT_EQ(Win32LcdAccessor().Lock(), 1);
}

TEST(Win32LcdAccessor, AnAbandonedLockCountsAsNotObtained) {
  Win32LcdAccessor directory;
  const KernelHandle holder = Start("LcdParticipant hold LumenHolderReady");
  ASSERT_TRUE(WaitForSignal("LumenHolderReady"));
  TerminateProcess(holder.Get(), 1);
  WaitForSingleObject(holder.Get(), kPatience);
  EXPECT_EQ(directory.Lock(), 0);
  EXPECT_EQ(directory.Lock(), 1) << "the platform has granted it all the same";
  EXPECT_EQ(directory.Unlock(), 0);
}

TEST(Win32LcdAccessor, ADeadReceiverGoesWithItsMessage) {
  Win32LcdAccessor directory;
  const View view;
  ASSERT_TRUE(directory.TryAddConnection("gone", 0, 0, '1'));
  const uint8_t message[] = {2, 0, 4, 'g', 'o', 'n', 'e'};
  ASSERT_EQ(directory.DispatchMessage(message, sizeof(message), 8, 1, 0), LcdDispatch::Posted);
  EXPECT_FALSE(directory.PruneDeadMessage());
  view->messageTime -= 5100;
  EXPECT_TRUE(directory.PruneDeadMessage());
  EXPECT_EQ(directory.FindConnectionFormat("gone", 0), 0);
  EXPECT_EQ(directory.DispatchMessage(message, sizeof(message), 8, 1, 0), LcdDispatch::Refused);
}

// One receiver is the product's, one another's; so are the two senders processes of their own.
TEST(Win32LcdAccessor, FourProcessesPassTwoThousandMessagesOnceAndInOrder) {
  Win32LcdAccessor keeper;  // so that the segment outlives each of them
  const KernelHandle ours = Start("LcdParticipant receive lumen-r1 1000");
  const KernelHandle theirs = Start("PlainParticipant lumen-r2 1000");
  ASSERT_TRUE(WaitForSignal("lumen-r1"));
  ASSERT_TRUE(WaitForSignal("lumen-r2"));
  const KernelHandle first = Start("LcdParticipant send 1 1000 lumen-r1 lumen-r2");
  const KernelHandle second = Start("LcdParticipant send 2 1000 lumen-r2 lumen-r1");
  EXPECT_EQ(ExitCode(first), 0u);
  EXPECT_EQ(ExitCode(second), 0u);
  EXPECT_EQ(ExitCode(ours), 0u);
  EXPECT_EQ(ExitCode(theirs), 0u);
  EXPECT_EQ(keeper.FindConnectionFormat("lumen-r1", 0), 0);
}

}  // namespace
