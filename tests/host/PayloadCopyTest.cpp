// A file put in place of one that is in use.
#include "host/PayloadCopy.h"

#include <gtest/gtest.h>

#include "tests/support/TestFiles.h"

namespace {

TEST(PayloadCopy, RenamesALibraryInUseAndLeavesItToTheNextRestart) {
  const testing_files::CleanDirectory folder(L"C:\\LumenPayloadCopy");
  const WideString source = folder.Path() + L"\\source", destination = folder.Path() + L"\\destination.dll";
  ASSERT_TRUE(CopyFileW(L"players\\nplumen.dll", destination.c_str(), FALSE)) << GetLastError();
  testing_files::WriteWhole(source, "fresh");
  LibraryHandle user(LoadLibraryW(destination.c_str()));
  ASSERT_TRUE(user);
  const CopyOutcome outcome = CopyFiles({{source, destination}}, [](uint64_t, uint64_t, const WideString&, bool) {});
  EXPECT_EQ(outcome.error, 0u);
  EXPECT_TRUE(outcome.restartNeeded);
  EXPECT_EQ(testing_files::ReadWhole(destination), "fresh");
  EXPECT_TRUE(testing_files::Exists(destination + L".1.old"));
  user.Reset();
  // What the copy queued is taken back, for the sake of those who look at the queue.
  RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, L"SYSTEM\\CurrentControlSet\\Control\\Session Manager",
                     L"PendingFileRenameOperations");
}

}  // namespace
