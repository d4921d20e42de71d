// The directory of the machine: real names, a real lock, and processes that share no more than those.
#include "connections/Win32LcdAccessor.h"

#include <gtest/gtest.h>

#include "tests/support/StartProcess.h"
#include "tests/support/TestFiles.h"

namespace {

KernelHandle Start(const WideString& arguments) {
  const size_t name = arguments.find(L' ');
  return StartProcess(testing_files::Beside(arguments.substr(0, name).c_str()) + arguments.substr(name));
}

constexpr DWORD kPatience = 60000;

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

TEST(Win32LcdAccessor, ASegmentOfAnotherLayoutIsRefusedForGoodAndADeadReceiverGoes) {
  const KernelHandle mapping(
      CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, sizeof(LcdSegment), "HalcyonicsFMOmega"));
  const MappedView view(MapViewOfFile(mapping.Get(), FILE_MAP_ALL_ACCESS, 0, 0, 0));
  auto* const other = static_cast<LcdSegment*>(view.Get());
  other->layoutVersion = 2;
  Win32LcdAccessor directory;
  EXPECT_EQ(directory.Lock(), 0);
  EXPECT_FALSE(directory.TryAddConnection("a", 0, 0, '1'));
  other->layoutVersion = 1;
  EXPECT_EQ(directory.Lock(), 0) << "it is not tried again";

  Win32LcdAccessor next;
  ASSERT_TRUE(next.TryAddConnection("gone", 0, 0, '1'));
  const uint8_t message[] = {2, 0, 4, 'g', 'o', 'n', 'e'};
  ASSERT_EQ(next.DispatchMessage(message, sizeof(message), 8, 1, 0), LcdDispatch::Posted);
  EXPECT_FALSE(next.PruneDeadMessage());
  other->messageTime -= 5100;
  EXPECT_TRUE(next.PruneDeadMessage());
  EXPECT_EQ(next.FindConnectionFormat("gone", 0), 0);
}

TEST(Win32LcdAccessor, AnAbandonedLockCountsAsNotObtained) {
  Win32LcdAccessor directory;
  const KernelHandle holder = Start(L"PlainParticipant lumen-holder hold");
  ASSERT_TRUE(WaitForSignal("lumen-holder"));
  TerminateProcess(holder.Get(), 1);
  WaitForSingleObject(holder.Get(), kPatience);
  EXPECT_EQ(directory.Lock(), 0);
  EXPECT_EQ(directory.Lock(), 1) << "the platform has granted it all the same";
  EXPECT_EQ(directory.Unlock(), 0);
}

// The receivers are another's; the product's is the one that lumenctl plays.
TEST(Win32LcdAccessor, FourProcessesPassTwoThousandMessagesOnceAndInOrder) {
  Win32LcdAccessor keeper;  // so that the segment outlives each of them
  const KernelHandle one = Start(L"PlainParticipant lumen-r1 1000");
  const KernelHandle other = Start(L"PlainParticipant lumen-r2 1000");
  ASSERT_TRUE(WaitForSignal("lumen-r1"));
  ASSERT_TRUE(WaitForSignal("lumen-r2"));
  const KernelHandle first = Start(L"LcdParticipant 1 1000 lumen-r1 lumen-r2");
  const KernelHandle second = Start(L"LcdParticipant 2 1000 lumen-r2 lumen-r1");
  EXPECT_EQ(ExitCode(first), 0u);
  EXPECT_EQ(ExitCode(second), 0u);
  EXPECT_EQ(ExitCode(one), 0u);
  EXPECT_EQ(ExitCode(other), 0u);
}

}  // namespace
