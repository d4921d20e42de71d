// The file methods through the real server, on real files, beyond what the account of files plays: what is allowed,
// beside what is refused and with which code.
#include <gtest/gtest.h>

#include <string>

#include "tests/support/BrokerProcess.h"
#include "tests/support/ByteArray.h"
#include "tests/support/TestFiles.h"

namespace {

using namespace testing_files;  // NOLINT(google-build-using-namespace): a test's own vocabulary

constexpr HRESULT kNotFound = static_cast<HRESULT>(0x80070002);
constexpr HRESULT kNoMoreFiles = static_cast<HRESULT>(0x80070012);
constexpr HRESULT kSharing = static_cast<HRESULT>(0x80070020);

class FileMethods : public BrokerSuiteTest {
 protected:
  static BString Name(const WideString& path) { return BString(WideView(path)); }
  [[nodiscard]] WideString In(const wchar_t* name) const { return directory.Path() + L"\\" + name; }
  HRESULT Create(const WideString& path, bool read, ULONG& cookie, bool truncate = true) {
    return broker->BrokerCreateFile(Name(path).Get(), read ? 1 : 0, truncate ? 1 : 0, &cookie);
  }
  HRESULT Write(ULONG cookie, const std::string& bytes, ULONG* written = nullptr) {
    ULONG count = 0;
    return broker->BrokerWriteFile(cookie, ByteArray(bytes).Get(), written == nullptr ? &count : written);
  }
  std::string Read(ULONG cookie, ULONG size) {
    ULONG read = 0;
    ByteArray data(nullptr);
    const HRESULT result = broker->BrokerReadFile(cookie, size, &read, data.Receive());
    return FAILED(result) ? "(failed)" : data.Text().substr(0, read);
  }

  CleanDirectory directory{PlayerDirectory()};
};

TEST_F(FileMethods, WriteSeekReadAndClose) {
  ULONG cookie = 0;
  ASSERT_EQ(Create(In(L"a.sol"), false, cookie), S_OK);
  EXPECT_EQ(cookie, 1u) << "each object counts from one";
  ULONG written = 0;
  EXPECT_EQ(Write(cookie, "hello world", &written), S_OK);
  EXPECT_EQ(written, 11u);
  EXPECT_EQ(Read(cookie, 5), "(failed)") << "a file opened for writing cannot be read through its cookie";
  ULONG position = 0;
  EXPECT_EQ(broker->BrokerSetFilePointer(cookie, 6, FILE_BEGIN, &position), S_OK);
  EXPECT_EQ(position, 6u);
  EXPECT_EQ(Write(cookie, "there"), S_OK);
  EXPECT_EQ(broker->BrokerCloseHandle(cookie), S_OK);
  EXPECT_EQ(broker->BrokerCloseHandle(cookie), E_INVALIDARG);

  ASSERT_EQ(Create(In(L"a.sol"), true, cookie), S_OK);
  EXPECT_EQ(Read(cookie, 100), "hello there");
  EXPECT_EQ(Read(cookie, 10), "") << "at the end nothing is read, and that is no failure";
  EXPECT_EQ(broker->BrokerSetFilePointer(cookie, -5, FILE_END, &position), S_OK);
  EXPECT_EQ(Read(cookie, 0), "");
  EXPECT_EQ(Read(cookie, 3), "the");
  EXPECT_EQ(broker->BrokerSetFilePointer(cookie, -100, FILE_BEGIN, &position), static_cast<HRESULT>(0x80070083));
  EXPECT_EQ(broker->BrokerSetFilePointer(cookie, 0, 9, &position), E_INVALIDARG);
  EXPECT_EQ(Write(cookie, "x"), E_ACCESSDENIED) << "the platform's own refusal";
  EXPECT_EQ(broker->BrokerCloseHandle(cookie), S_OK);
}

TEST_F(FileMethods, OpeningKeepsOrMakesAnew) {
  WriteWhole(In(L"a.sol"), "old content");
  ULONG cookie = 0;
  ASSERT_EQ(Create(In(L"a.sol"), false, cookie, false), S_OK);
  EXPECT_EQ(Write(cookie, "new"), S_OK);
  EXPECT_EQ(broker->BrokerCloseHandle(cookie), S_OK);
  EXPECT_EQ(ReadWhole(In(L"a.sol")), "new content");
  ASSERT_EQ(Create(In(L"a.sol"), false, cookie), S_OK);
  EXPECT_EQ(broker->BrokerCloseHandle(cookie), S_OK);
  EXPECT_EQ(ReadWhole(In(L"a.sol")), "");
}

TEST_F(FileMethods, AFileInUseIsReadWithTheWiderSharing) {
  WriteWhole(In(L"a.sol"), "x");
  FileHandle writer(
      CreateFileW(In(L"a.sol").c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
  ASSERT_TRUE(writer);
  ULONG cookie = 0;
  EXPECT_EQ(Create(In(L"a.sol"), true, cookie), S_OK);
  EXPECT_EQ(broker->BrokerCloseHandle(cookie), S_OK);
  EXPECT_EQ(Create(In(L"a.sol"), false, cookie), kSharing);
  writer.Reset(CreateFileW(In(L"b.sol").c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
  EXPECT_EQ(Create(In(L"b.sol"), true, cookie), kSharing);
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
  EXPECT_EQ(broker->BrokerCloseHandle(cookie), S_OK);
}

TEST_F(FileMethods, MalformedArraysAreRefused) {
  ULONG cookie = 0, written = 0;
  ASSERT_EQ(Create(In(L"a.sol"), false, cookie), S_OK);
  SAFEARRAYBOUND two[2] = {{4, 0}, {4, 0}};
  SAFEARRAYBOUND fromOne = {4, 1}, fromBelow = {4, -1};
  const ByteArray malformed[] = {
      ByteArray(SafeArrayCreate(VT_UI1, 2, two)), ByteArray(SafeArrayCreate(VT_UI1, 1, &fromOne)),
      ByteArray(SafeArrayCreate(VT_UI1, 1, &fromBelow)), ByteArray(SafeArrayCreateVector(VT_I2, 0, 4))};
  for (const ByteArray& array : malformed) {
    written = 77;
    EXPECT_EQ(broker->BrokerWriteFile(cookie, array.Get(), &written), E_FAIL);
    EXPECT_EQ(written, 0u);
  }
  EXPECT_EQ(broker->BrokerWriteFile(cookie, nullptr, &written), E_INVALIDARG);
  EXPECT_EQ(broker->BrokerWriteFile(cookie + 1, ByteArray("x").Get(), &written), E_INVALIDARG);
  EXPECT_EQ(Write(cookie, "fine"), S_OK);
  EXPECT_EQ(broker->BrokerCloseHandle(cookie), S_OK);
  EXPECT_EQ(ReadWhole(In(L"a.sol")), "fine");
}

TEST_F(FileMethods, DeletingMovingAndDirectories) {
  WriteWhole(In(L"a.sol"), "a");
  WriteWhole(In(L"b.sol"), "b");
  const auto move = [&](const WideString& from, const wchar_t* to, LONG flags) {
    return broker->BrokerMoveFileEx(Name(from).Get(), Name(In(to)).Get(), flags);
  };
  EXPECT_EQ(move(In(L"a.sol"), L"b.sol", 0), static_cast<HRESULT>(0x800700B7));
  EXPECT_EQ(move(L"C:\\windows\\win.ini", L"c.sol", 0), E_FAIL);
  EXPECT_EQ(move(In(L"a.sol"), L"b.sol", 1), S_OK);
  EXPECT_EQ(ReadWhole(In(L"b.sol")), "a");

  EXPECT_EQ(broker->BrokerCreateDirectory(Name(In(L"d.sol")).Get()), S_OK);
  EXPECT_EQ(broker->BrokerCreateDirectory(Name(In(L"d.sol")).Get()), static_cast<HRESULT>(0x800700B7));
  EXPECT_EQ(broker->BrokerCreateDirectory(Name(L"C:\\d").Get()), E_FAIL);
  EXPECT_EQ(move(In(L"d.sol"), L"e.sol", 0), E_FAIL) << "a directory";
  EXPECT_EQ(broker->BrokerRemoveDirectory(Name(In(L"d.sol")).Get()), S_OK);
  EXPECT_EQ(broker->BrokerRemoveDirectory(Name(In(L"d.sol")).Get()), kNotFound);
  EXPECT_EQ(broker->BrokerRemoveDirectory(Name(L"C:\\windows").Get()), E_FAIL);

  WriteWhole(In(L"a.exe"), "x");
  EXPECT_EQ(broker->BrokerDeleteFile(Name(In(L"a.exe")).Get()), S_OK) << "no ending counts for deleting";
}

TEST_F(FileMethods, AttributesAndWritability) {
  WriteWhole(In(L"a.sol"), "12345");
  ULONG values[9] = {};
  const auto ask = [&](const WideString& path) {
    return broker->BrokerGetFileAttributesEx(Name(path).Get(), &values[0], &values[1], &values[2], &values[3],
                                             &values[4], &values[5], &values[6], &values[7], &values[8]);
  };
  EXPECT_EQ(ask(In(L"a.sol")), S_OK);
  EXPECT_EQ(values[7], 5u);
  EXPECT_NE(values[6], 0u);
  EXPECT_EQ(ask(L"C:\\windows"), S_OK);
  EXPECT_NE(values[0] & FILE_ATTRIBUTE_DIRECTORY, 0u);
  EXPECT_EQ(ask(In(L"none")), kNotFound);

  const auto writable = [&](const WideString& path, LONG extension) {
    return broker->BrokerIsWritablePath(Name(path).Get(), extension);
  };
  EXPECT_EQ(writable(In(L"a.exe"), 1), E_FAIL);
  EXPECT_EQ(writable(In(L"a.exe"), 2), S_OK) << "only 1 asks for the ending";
  EXPECT_EQ(writable(In(L"a.exe"), 0), S_OK);
  EXPECT_EQ(writable(L"C:\\a.sol", 0), E_FAIL);
}

TEST_F(FileMethods, ListingGivesEachNameOnceAndThenTheEnd) {
  WriteWhole(In(L"one.sol"), "");
  WriteWhole(In(L"two.sol"), "");
  ULONG cookie = 0, attributes = 0;
  BString name;
  const auto first = [&](const WideString& path) {
    return broker->BrokerFindFirstFile(Name(path).Get(), name.Receive(), &attributes, &cookie);
  };
  ASSERT_EQ(first(In(L"*.sol")), S_OK);
  std::string names = ToUtf8(name.View());
  HRESULT result = S_OK;
  while (SUCCEEDED(result = broker->BrokerFindNextFile(cookie, name.Receive(), &attributes)))
    names += " " + ToUtf8(name.View());
  EXPECT_EQ(result, kNoMoreFiles);
  EXPECT_EQ(names, "one.sol two.sol");
  EXPECT_EQ(broker->BrokerFindClose(cookie), S_OK);
  EXPECT_EQ(broker->BrokerFindClose(cookie), E_INVALIDARG);
  EXPECT_EQ(first(L"C:\\*"), E_ACCESSDENIED);
  EXPECT_EQ(first(In(L"*.none")), kNotFound);
}

TEST_F(FileMethods, ACookieIsNotTiedToASort) {
  ULONG cookie = 0;
  ASSERT_EQ(Create(In(L"a.sol"), false, cookie), S_OK);
  EXPECT_NE(broker->BrokerFindClose(cookie), E_INVALIDARG) << "a file's cookie reaches FindClose";
  EXPECT_EQ(broker->BrokerCloseHandle(cookie), E_INVALIDARG) << "and is gone afterwards";
}

TEST_F(FileMethods, HistoryIsDeletedAndItsDirectoryThereAgain) {
  MakeDirectories(In(L"#SharedObjects\\site"));
  WriteWhole(In(L"#SharedObjects\\site\\a.sol"), "x");
  EXPECT_EQ(broker->BrokerDeleteBrowsingHistory(Name(directory.Path()).Get()), S_OK);
  EXPECT_TRUE(Exists(In(L"#SharedObjects")));
  EXPECT_FALSE(Exists(In(L"#SharedObjects\\site")));
  EXPECT_EQ(broker->BrokerDeleteBrowsingHistory(Name(directory.Path()).Get()), S_OK) << "also when empty";
  EXPECT_EQ(broker->BrokerDeleteBrowsingHistory(BString(L"C:\\windows").Get()), E_FAIL);
}

}  // namespace
