// Files put in place of files that are in use or not there.
#include "host/PayloadCopy.h"

#include <gtest/gtest.h>

#include "tests/support/TestFiles.h"

namespace {

using testing_files::Exists;
using testing_files::ReadWhole;
using testing_files::WriteWhole;

constexpr wchar_t kFolder[] = L"C:\\LumenPayloadCopy";

class PayloadCopy : public testing::Test {
 protected:
  CopyOutcome Copy(const std::vector<FileToCopy>& files) {
    return CopyFiles(files, [](uint64_t, uint64_t, const WideString&, bool) {});
  }
  // What is in the folder besides sources and destinations.
  [[nodiscard]] bool Clean() const { return !Exists(destination + L".new") && !Exists(destination + L".1.old"); }

  testing_files::CleanDirectory folder{kFolder};
  const WideString source = WideString(kFolder) + L"\\source";
  const WideString destination = WideString(kFolder) + L"\\destination.dll";
};

TEST_F(PayloadCopy, RenamesALibraryInUseAndLeavesItToTheNextRestart) {
  ASSERT_TRUE(CopyFileW(L"players\\nplumen.dll", destination.c_str(), FALSE)) << GetLastError();
  WriteWhole(source, "fresh");
  LibraryHandle user(LoadLibraryW(destination.c_str()));
  ASSERT_TRUE(user);
  const CopyOutcome outcome = Copy({{source, destination}});
  EXPECT_EQ(outcome.error, 0u);
  EXPECT_TRUE(outcome.restartNeeded);
  EXPECT_EQ(ReadWhole(destination), "fresh");
  EXPECT_TRUE(Exists(destination + L".1.old"));
  user.Reset();
  // What the copy queued is taken back, for the sake of those who look at the queue.
  RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, L"SYSTEM\\CurrentControlSet\\Control\\Session Manager",
                     L"PendingFileRenameOperations");
}

TEST_F(PayloadCopy, StopsAtTheFileThatCannotBePutInPlaceAndLeavesTheOld) {
  WriteWhole(source, "fresh");
  WriteWhole(destination, "old");
  SetFileAttributesW(destination.c_str(), FILE_ATTRIBUTE_READONLY);
  const FileHandle held(CreateFileW(destination.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
  const CopyOutcome outcome = Copy({{source, destination}, {source, destination + L"2"}});
  EXPECT_NE(outcome.error, 0u);
  EXPECT_EQ(ToUtf8(outcome.failed), ToUtf8(destination));
  EXPECT_FALSE(Exists(destination + L"2"));
  EXPECT_TRUE(Clean());
  EXPECT_EQ(GetFileAttributesW(destination.c_str()) & FILE_ATTRIBUTE_READONLY, 1u) << "the old one stays protected";
  EXPECT_EQ(Copy({{source + L"missing", destination + L"3"}}).error, static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
}

}  // namespace
