// The file methods through the real server, on real files, beyond what the account of files plays: codes, quirks, and
// what is refused beside what is allowed.
#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "tests/support/BrokerProcess.h"
#include "tests/support/ByteArray.h"
#include "tests/support/TestFiles.h"

namespace {

using namespace testing_files;  // NOLINT(google-build-using-namespace): a test's own vocabulary

constexpr HRESULT kNotFound = static_cast<HRESULT>(0x80070002);
constexpr HRESULT kThere = static_cast<HRESULT>(0x800700B7);

class FileMethods : public BrokerSuiteTest {
 protected:
  static BString Name(const WideString& path) { return BString(WideView(path)); }
  [[nodiscard]] WideString In(const wchar_t* name) const { return directory.Path() + L"\\" + name; }
  HRESULT Create(const WideString& path, bool read, ULONG& cookie, bool truncate = false) {
    return broker->BrokerCreateFile(Name(path).Get(), read ? 1 : 0, truncate ? 1 : 0, &cookie);
  }
  [[nodiscard]] ULONG Open(const wchar_t* name, const std::string& content) {
    WriteWhole(In(name), content);
    ULONG cookie = 0;
    EXPECT_EQ(Create(In(name), false, cookie), S_OK);
    return cookie;
  }
  HRESULT Write(ULONG cookie, const std::string& bytes) {
    ULONG count = 0;
    return broker->BrokerWriteFile(cookie, ByteArray(bytes).Get(), &count);
  }
  HRESULT Seek(ULONG cookie, LONG distance, ULONG from = FILE_BEGIN) {
    ULONG position = 0;
    return broker->BrokerSetFilePointer(cookie, distance, from, &position);
  }
  std::string Read(ULONG cookie, ULONG size) {
    ULONG read = 0;
    ByteArray data(nullptr);
    const HRESULT result = broker->BrokerReadFile(cookie, size, &read, data.Receive());
    return FAILED(result) ? "(failed)" : data.Text().substr(0, read);
  }
  void Close(ULONG cookie) { EXPECT_EQ(broker->BrokerCloseHandle(cookie), S_OK); }

  CleanDirectory directory{PlayerDirectory()};
};

TEST_F(FileMethods, WriteSeekReadAndClose) {
  WriteWhole(In(L"a.sol"), "old content, longer than what follows");
  ULONG cookie = 0;
  ASSERT_EQ(Create(In(L"a.sol"), false, cookie, true), S_OK);
  EXPECT_EQ(cookie, 1u) << "each object counts from one";
  EXPECT_EQ(Write(cookie, "hello world"), S_OK);
  EXPECT_EQ(Read(cookie, 5), "(failed)") << "a file opened for writing cannot be read through its cookie";
  EXPECT_EQ(Seek(cookie, 6), S_OK);
  EXPECT_EQ(Write(cookie, "there"), S_OK);
  Close(cookie);
  EXPECT_EQ(broker->BrokerCloseHandle(cookie), E_INVALIDARG);

  ASSERT_EQ(Create(In(L"a.sol"), true, cookie), S_OK);
  EXPECT_EQ(Read(cookie, 100), "hello there");
  EXPECT_EQ(Read(cookie, 10), "") << "at the end nothing is read, and that is no failure";
  EXPECT_EQ(Seek(cookie, -5, FILE_END), S_OK);
  EXPECT_EQ(Read(cookie, 3), "the");
  EXPECT_EQ(Seek(cookie, -100), static_cast<HRESULT>(0x80070083));
  EXPECT_EQ(Seek(cookie, 0, 9), E_INVALIDARG);
  EXPECT_EQ(Write(cookie, "x"), E_ACCESSDENIED) << "the platform's own refusal";
  EXPECT_NE(broker->BrokerFindClose(cookie), E_INVALIDARG) << "a file's cookie reaches FindClose";
  EXPECT_EQ(broker->BrokerCloseHandle(cookie), E_INVALIDARG) << "and is gone afterwards";
}

// The read-back rewinds the cookie's handle and leaves it there; clients that seek first and write once see it.
TEST_F(FileMethods, TheFirstWriteBehindASeekLandsAtTheStartOfTheFile) {
  const ULONG cookie = Open(L"a.sol", "0123456789");
  EXPECT_EQ(Seek(cookie, 5), S_OK);
  EXPECT_EQ(Write(cookie, "AB"), S_OK);
  EXPECT_EQ(Write(cookie, "C"), S_OK);
  EXPECT_EQ(Seek(cookie, 8), S_OK);
  EXPECT_EQ(Write(cookie, "Z"), S_OK) << "later seeks are kept";
  Close(cookie);
  EXPECT_EQ(ReadWhole(In(L"a.sol")), "ABC34567Z9");
}

TEST_F(FileMethods, TheCookieOfARefusedProgramStaysWithoutAFile) {
  // A seek far behind the end neither fails nor reads that much: the file ahead of the slice counts.
  for (const LONG seek : {0, 0x7FFFFFFF}) {
    const ULONG cookie = Open(L"a.dll", seek == 0 ? "" : ProgramImage());
    EXPECT_EQ(Seek(cookie, seek), S_OK);
    EXPECT_EQ(Write(cookie, seek == 0 ? ProgramImage() : "data"), E_FAIL);
    EXPECT_FALSE(Exists(In(L"a.dll")));
    EXPECT_EQ(Read(cookie, 1), "(failed)");
    EXPECT_EQ(Seek(cookie, 0), static_cast<HRESULT>(0x80070006));
    Close(cookie);
  }
  // An empty first write was the one that is looked at.
  const ULONG other = Open(L"b.dll", "");
  EXPECT_EQ(Write(other, ""), S_OK);
  EXPECT_EQ(Write(other, ProgramImage()), S_OK);
  Close(other);
  EXPECT_EQ(ReadWhole(In(L"b.dll")), ProgramImage());
}

// Reading is open to any path, so a program "written" through such a cookie must not take the file away.
TEST_F(FileMethods, AReadCookieCannotBeUsedToDeleteAFileElsewhere) {
  const CleanDirectory outside(L"C:\\lumen-test-outside");
  const WideString victim = outside.Path() + L"\\precious.txt";
  WriteWhole(victim, "precious");
  ULONG cookie = 0;
  ASSERT_EQ(Create(victim, true, cookie), S_OK);
  EXPECT_EQ(Write(cookie, ProgramImage()), E_FAIL);
  EXPECT_EQ(ReadWhole(victim), "precious");
  Close(cookie);
}

TEST_F(FileMethods, MalformedArraysAreRefused) {
  const ULONG cookie = Open(L"a.sol", "");
  SAFEARRAYBOUND two[2] = {{4, 0}, {4, 0}}, fromOne = {4, 1}, fromBelow = {4, -1};
  const ByteArray malformed[] = {
      ByteArray(nullptr), ByteArray(SafeArrayCreate(VT_UI1, 2, two)), ByteArray(SafeArrayCreate(VT_UI1, 1, &fromOne)),
      ByteArray(SafeArrayCreate(VT_UI1, 1, &fromBelow)), ByteArray(SafeArrayCreateVector(VT_I2, 0, 4))};
  for (const ByteArray& array : malformed) {
    ULONG written = 77;
    EXPECT_EQ(broker->BrokerWriteFile(cookie, array.Get(), &written), array.Get() == nullptr ? E_INVALIDARG : E_FAIL);
    EXPECT_EQ(written, 0u);
  }
  EXPECT_EQ(Write(cookie, "fine"), S_OK);
  Close(cookie);
  EXPECT_EQ(ReadWhole(In(L"a.sol")), "fine");
}

TEST_F(FileMethods, DeletingMovingAndDirectories) {
  WriteWhole(In(L"a.sol"), "a");
  WriteWhole(In(L"b.sol"), "b");
  MakeDirectories(In(L"d.sol"));
  const auto move = [&](const WideString& from, const wchar_t* to, LONG flags) {
    return broker->BrokerMoveFileEx(Name(from).Get(), Name(In(to)).Get(), flags);
  };
  EXPECT_EQ(move(In(L"a.sol"), L"b.sol", 0), kThere);
  EXPECT_EQ(move(L"C:\\windows\\win.ini", L"c.sol", 0), E_FAIL);
  EXPECT_EQ(move(In(L"d.sol"), L"e.sol", 0), E_FAIL) << "a directory";
  // The delay until reboot is in the mask as well; it would be left in the registry.
  const std::pair<LONG, HRESULT> flags[] = {{0x2B, kNotFound}, {0x10, E_FAIL}, {0x41, E_FAIL}, {INT32_MIN, E_FAIL}};
  for (const auto& [flag, expected] : flags) EXPECT_EQ(move(In(L"none.sol"), L"c.sol", flag), expected) << flag;
  EXPECT_EQ(move(In(L"a.sol"), L"b.sol", 1), S_OK);
  EXPECT_EQ(ReadWhole(In(L"b.sol")), "a");

  EXPECT_EQ(broker->BrokerCreateDirectory(Name(In(L"d.sol")).Get()), kThere);
  EXPECT_EQ(broker->BrokerCreateDirectory(Name(L"C:\\d").Get()), E_FAIL);
  EXPECT_EQ(broker->BrokerRemoveDirectory(Name(In(L"d.sol")).Get()), S_OK);
  EXPECT_EQ(broker->BrokerRemoveDirectory(Name(In(L"d.sol")).Get()), kNotFound);
  EXPECT_EQ(broker->BrokerRemoveDirectory(Name(L"C:\\windows").Get()), E_FAIL);

  WriteWhole(In(L"a.exe"), "x");
  const std::tuple<const wchar_t*, LONG, HRESULT> writable[] = {
      {L"a.exe", 1, E_FAIL}, {L"a.exe", 2, S_OK}, {L"a.exe", 0, S_OK}, {L"..\\a.sol", 0, E_FAIL}};
  for (const auto& [name, extension, expected] : writable) {  // only 1 asks for the ending
    EXPECT_EQ(broker->BrokerIsWritablePath(Name(In(name)).Get(), extension), expected) << extension;
  }
  EXPECT_EQ(broker->BrokerDeleteFile(Name(In(L"a.exe")).Get()), S_OK) << "no ending counts for deleting";
}

TEST_F(FileMethods, HistoryIsDeletedAndItsDirectoryThereAgain) {
  MakeDirectories(In(L"#SharedObjects\\site"));
  for (int round = 0; round < 2; ++round) {  // also when empty
    EXPECT_EQ(broker->BrokerDeleteBrowsingHistory(Name(directory.Path()).Get()), S_OK);
    EXPECT_TRUE(Exists(In(L"#SharedObjects")) && !Exists(In(L"#SharedObjects\\site")));
  }
  EXPECT_EQ(broker->BrokerDeleteBrowsingHistory(BString(L"C:\\windows").Get()), E_FAIL);
}

}  // namespace
