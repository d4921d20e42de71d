// The file methods in this process, where arguments arrive that a marshaller would not let through, and where what is
// left open can be counted. What they do for a client is tested through the real server.
#include <gtest/gtest.h>

#include <array>
#include <string>

#include "tests/broker/FileMethodsFixture.h"
#include "tests/support/ByteArray.h"
#include "tests/support/ImportHook.h"

namespace {

using namespace testing_files;  // NOLINT(google-build-using-namespace): a test's own vocabulary

constexpr HRESULT kNotFound = static_cast<HRESULT>(0x80070002);
constexpr HRESULT kPathNotFound = static_cast<HRESULT>(0x80070003);
constexpr HRESULT kBadHandle = static_cast<HRESULT>(0x80070006);
constexpr HRESULT kSharing = static_cast<HRESULT>(0x80070020);
constexpr ULONG kUnknown = 4711;

class Files : public FileMethodsFixture {
 protected:
  [[nodiscard]] ULONG Open(const wchar_t* name, bool read = false, bool truncate = false) {
    ULONG cookie = 0;
    EXPECT_EQ(broker->BrokerCreateFile(Name(In(name)).Get(), read ? 1 : 0, truncate ? 1 : 0, &cookie), S_OK);
    return cookie;
  }
  HRESULT Write(ULONG cookie, const std::string& bytes) {
    ULONG written = 0;
    const ByteArray data(bytes);
    const HRESULT result = broker->BrokerWriteFile(cookie, data.Get(), &written);
    EXPECT_EQ(data.Get()->cLocks, 0u) << "the array is unlocked however the write went";
    return result;
  }
  HRESULT Seek(ULONG cookie, LONG distance) {
    ULONG position = 0;
    return broker->BrokerSetFilePointer(cookie, distance, FILE_BEGIN, &position);
  }
  void Close(ULONG cookie) { EXPECT_EQ(broker->BrokerCloseHandle(cookie), S_OK); }

  ComPtr<ILumenBroker6> broker = NewBroker();
};

TEST_F(Files, NullOutArgumentsAreRefusedBeforeAnythingIsDone) {
  WriteWhole(In(L"a.sol"), "12345");
  EXPECT_EQ(broker->BrokerCreateFile(Name(In(L"new.sol")).Get(), 0, 1, nullptr), E_INVALIDARG);
  EXPECT_FALSE(Exists(In(L"new.sol")));

  const ULONG cookie = Open(L"a.sol", true);
  ULONG read = 77;
  ByteArray data(nullptr);
  EXPECT_EQ(broker->BrokerReadFile(cookie, 1, nullptr, data.Receive()), E_INVALIDARG);
  EXPECT_EQ(broker->BrokerReadFile(cookie, 1, &read, nullptr), E_INVALIDARG);
  EXPECT_EQ(broker->BrokerSetFilePointer(cookie, 3, FILE_BEGIN, nullptr), E_INVALIDARG);
  EXPECT_EQ(broker->BrokerWriteFile(cookie, ByteArray("x").Get(), nullptr), E_INVALIDARG);
  EXPECT_EQ(broker->BrokerReadFile(cookie, 9, &read, data.Receive()), S_OK);
  EXPECT_EQ(data.Text().substr(0, read), "12345") << "none of them moved the position";
  EXPECT_EQ(data.Text().size(), 9u) << "the array keeps the length asked for";
  Close(cookie);

  ULONG values[9] = {};
  for (size_t missing = 0; missing <= 9; ++missing) {
    std::array<ULONG*, 9> out{};
    for (size_t i = 0; i < 9; ++i) out[i] = i == missing ? nullptr : &values[i];
    EXPECT_EQ(broker->BrokerGetFileAttributesEx(Name(In(L"a.sol")).Get(), out[0], out[1], out[2], out[3], out[4],
                                                out[5], out[6], out[7], out[8]),
              missing < 9 ? E_INVALIDARG : S_OK);
  }

  BString name;
  ULONG attributes = 0, search = 0;
  const BString pattern = Name(In(L"*"));
  EXPECT_EQ(broker->BrokerFindFirstFile(nullptr, name.Receive(), &attributes, &search), E_INVALIDARG);
  EXPECT_EQ(broker->BrokerFindFirstFile(pattern.Get(), nullptr, &attributes, &search), E_INVALIDARG);
  EXPECT_EQ(broker->BrokerFindFirstFile(pattern.Get(), name.Receive(), nullptr, &search), E_INVALIDARG);
  EXPECT_EQ(broker->BrokerFindFirstFile(pattern.Get(), name.Receive(), &attributes, nullptr), E_INVALIDARG);
  ASSERT_EQ(broker->BrokerFindFirstFile(pattern.Get(), name.Receive(), &attributes, &search), S_OK);
  EXPECT_EQ(broker->BrokerFindNextFile(search, nullptr, &attributes), E_INVALIDARG);
  EXPECT_EQ(broker->BrokerFindNextFile(search, name.Receive(), nullptr), E_INVALIDARG);
  EXPECT_EQ(broker->BrokerFindNextFile(search, name.Receive(), &attributes), S_OK);
  EXPECT_EQ(broker->BrokerFindClose(search), S_OK);
}

TEST_F(Files, AnUnknownCookieIsAnInvalidArgumentEverywhere) {
  ULONG value = 0, attributes = 0;
  ByteArray data(nullptr);
  BString name;
  EXPECT_EQ(broker->BrokerCloseHandle(kUnknown), E_INVALIDARG);
  EXPECT_EQ(broker->BrokerSetFilePointer(kUnknown, 0, FILE_BEGIN, &value), E_INVALIDARG);
  EXPECT_EQ(broker->BrokerReadFile(kUnknown, 1, &value, data.Receive()), E_INVALIDARG);
  EXPECT_EQ(Write(kUnknown, "x"), E_INVALIDARG);
  EXPECT_EQ(broker->BrokerFindNextFile(kUnknown, name.Receive(), &attributes), E_INVALIDARG);
  EXPECT_EQ(broker->BrokerFindClose(kUnknown), E_INVALIDARG);
  EXPECT_EQ(broker->BrokerCloseHandle(0), E_INVALIDARG);
}

TEST_F(Files, NoNameIsRefusedAsThePlatformOrThePolicyDoes) {
  ULONG value = 99;
  for (const BSTR none : {static_cast<BSTR>(nullptr), Name(L"").Release()}) {
    EXPECT_EQ(broker->BrokerCreateFile(none, 0, 1, &value), E_ACCESSDENIED);
    EXPECT_EQ(value, 0u);
    EXPECT_EQ(broker->BrokerCreateFile(none, 1, 0, &value), kPathNotFound);
    EXPECT_EQ(
        broker->BrokerGetFileAttributesEx(none, &value, &value, &value, &value, &value, &value, &value, &value, &value),
        kPathNotFound);
    EXPECT_EQ(broker->BrokerDeleteFile(none), E_FAIL);
    EXPECT_EQ(broker->BrokerRemoveDirectory(none), E_FAIL);
    EXPECT_EQ(broker->BrokerCreateDirectory(none), E_FAIL);
    EXPECT_EQ(broker->BrokerMoveFileEx(none, none, 0), E_FAIL);
    EXPECT_EQ(broker->BrokerIsWritablePath(none, 0), E_FAIL);
    EXPECT_EQ(broker->BrokerDeleteBrowsingHistory(none), E_FAIL);
    SysFreeString(none);
  }
}

// The read-back rewinds the cookie's handle and leaves it there; clients that seek first and write once see it.
TEST_F(Files, TheFirstWriteBehindASeekLandsAtTheStartOfTheFile) {
  WriteWhole(In(L"a.sol"), "0123456789");
  const ULONG cookie = Open(L"a.sol");
  EXPECT_EQ(Seek(cookie, 5), S_OK);
  EXPECT_EQ(Write(cookie, "AB"), S_OK);
  EXPECT_EQ(Write(cookie, "C"), S_OK);
  EXPECT_EQ(Seek(cookie, 8), S_OK);
  EXPECT_EQ(Write(cookie, "Z"), S_OK) << "later seeks are kept";
  Close(cookie);
  EXPECT_EQ(ReadWhole(In(L"a.sol")), "ABC34567Z9");
}

TEST_F(Files, AReadBackThatFailsIsTheResultAndTheSliceIsWrittenAllTheSame) {
  const std::string image = ProgramImage();
  WriteWhole(In(L"a.dll"), image);
  const FileHandle noReaders(
      CreateFileW(In(L"a.dll").c_str(), GENERIC_READ, FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr));
  ASSERT_TRUE(noReaders);
  const ULONG cookie = Open(L"a.dll");
  EXPECT_EQ(Seek(cookie, 10), S_OK);
  EXPECT_EQ(Write(cookie, image.substr(10)), kSharing);
  EXPECT_EQ(Write(cookie, "end"), S_OK);
  Close(cookie);
  EXPECT_TRUE(Exists(In(L"a.dll"))) << "what could not be read is no image";
  EXPECT_EQ(GetFileSize(noReaders.Get(), nullptr), image.size());
}

TEST_F(Files, AHugeSeekNeitherFailsNorReadsThatMuch) {
  for (const LONG seek : {LONG{0x7FFFFFFF}, LONG{0x40000000}}) {
    WriteWhole(In(L"a.dll"), ProgramImage());
    ULONG cookie = Open(L"a.dll");
    EXPECT_EQ(Seek(cookie, seek), S_OK);
    EXPECT_EQ(Write(cookie, "data"), E_FAIL) << "the file ahead of the slice is an image";
    EXPECT_FALSE(Exists(In(L"a.dll")));
    Close(cookie);
    WriteWhole(In(L"a.dll"), "plain");
    cookie = Open(L"a.dll");
    EXPECT_EQ(Seek(cookie, seek), S_OK);
    EXPECT_EQ(Write(cookie, "data"), S_OK);
    Close(cookie);
  }
}

TEST_F(Files, TheCookieOfARefusedProgramStaysWithoutAFile) {
  const ULONG cookie = Open(L"a.dll", false, true);
  EXPECT_EQ(Write(cookie, ProgramImage()), E_FAIL);
  ULONG value = 0;
  ByteArray data(nullptr);
  EXPECT_EQ(broker->BrokerReadFile(cookie, 1, &value, data.Receive()), E_INVALIDARG);
  EXPECT_EQ(Seek(cookie, 0), kBadHandle);
  Close(cookie);
  EXPECT_EQ(broker->BrokerCloseHandle(cookie), E_INVALIDARG);

  // An empty first write was the one that is looked at.
  const ULONG other = Open(L"b.dll", false, true);
  EXPECT_EQ(Write(other, ""), S_OK);
  EXPECT_EQ(Write(other, ProgramImage()), S_OK);
  Close(other);
  EXPECT_EQ(ReadWhole(In(L"b.dll")), ProgramImage());
}

TEST_F(Files, MovingTakesTheFlagsOfTheMaskAndNoOther) {
  // The delay until reboot is in the mask as well; it would be left in the registry.
  const struct {
    LONG flags;
    HRESULT expected;
  } rows[] = {{0, kNotFound},    {1, kNotFound}, {2, kNotFound},     {8, kNotFound}, {0x20, kNotFound},
              {0x2B, kNotFound}, {0x10, E_FAIL}, {0x40, E_FAIL},     {0x11, E_FAIL}, {0x100, E_FAIL},
              {0x10000, E_FAIL}, {-1, E_FAIL},   {INT32_MIN, E_FAIL}};
  for (const auto& row : rows) {
    EXPECT_EQ(broker->BrokerMoveFileEx(Name(In(L"none.sol")).Get(), Name(In(L"b.sol")).Get(), row.flags), row.expected)
        << row.flags;
  }
}

HRESULT WINAPI RefuseToLock(SAFEARRAY*, void**) {
  return E_UNEXPECTED;
}
SAFEARRAY* WINAPI RefuseToCreate(VARTYPE, LONG, ULONG) {
  return nullptr;
}

TEST_F(Files, ArraysThatCannotBeMadeOrLocked) {
  WriteWhole(In(L"a.sol"), "12345");
  const ULONG cookie = Open(L"a.sol", true);
  const ByteArray slice("x");
  ULONG count = 77;
  ByteArray data(nullptr);
  {
    const ImportHook hook(GetModuleHandleW(nullptr), "SafeArrayCreateVector", &RefuseToCreate);
    EXPECT_EQ(broker->BrokerReadFile(cookie, 5, &count, data.Receive()), E_FAIL);
  }
  {
    const ImportHook hook(GetModuleHandleW(nullptr), "SafeArrayAccessData", &RefuseToLock);
    EXPECT_EQ(broker->BrokerReadFile(cookie, 5, &count, data.Receive()), S_OK) << "success without data";
    EXPECT_EQ(count, 77u);
    EXPECT_EQ(broker->BrokerWriteFile(cookie, slice.Get(), &count), E_UNEXPECTED);
    EXPECT_EQ(count, 0u);
  }
  EXPECT_EQ(data.Text(), std::string(5, '\0'));
  EXPECT_EQ(broker->BrokerReadFile(cookie, 5, &count, data.Receive()), S_OK);
  EXPECT_EQ(data.Text(), "12345") << "the position is where it was";
  Close(cookie);

  const ULONG writer = Open(L"a.sol");
  EXPECT_NE(broker->BrokerReadFile(writer, 5, &count, data.Receive()), S_OK);
  EXPECT_EQ(data.Get(), nullptr) << "a read that fails gives no array";
  Close(writer);
}

TEST_F(Files, MalformedArraysAreRefusedAndWriteNothing) {
  SAFEARRAYBOUND two[2] = {{4, 0}, {4, 0}};
  SAFEARRAYBOUND fromOne = {4, 1}, fromBelow = {4, -1};
  const ByteArray malformed[] = {
      ByteArray(SafeArrayCreate(VT_UI1, 2, two)),         ByteArray(SafeArrayCreate(VT_UI1, 1, &fromOne)),
      ByteArray(SafeArrayCreate(VT_UI1, 1, &fromBelow)),  ByteArray(SafeArrayCreateVector(VT_I2, 0, 4)),
      ByteArray(SafeArrayCreateVector(VT_VARIANT, 0, 4)),
  };
  const ULONG cookie = Open(L"a.sol", false, true);
  for (const ByteArray& array : malformed) {
    ULONG written = 77;
    EXPECT_EQ(broker->BrokerWriteFile(cookie, array.Get(), &written), E_FAIL);
    EXPECT_EQ(written, 0u);
    EXPECT_EQ(array.Get()->cLocks, 0u);
  }
  // Bytes of another type of the same size are bytes.
  ULONG written = 0;
  EXPECT_EQ(broker->BrokerWriteFile(cookie, ByteArray(SafeArrayCreateVector(VT_I1, 0, 4)).Get(), &written), S_OK);
  EXPECT_EQ(written, 4u);
  Close(cookie);
}

TEST_F(Files, ManyRoundsOfEverythingLeaveNothing) {
  const auto round = [this](int) {
    ULONG cookie = Open(L"a.sol", false, true);
    EXPECT_EQ(Write(cookie, "data"), S_OK);
    Close(cookie);
    cookie = Open(L"a.dll", false, true);
    EXPECT_EQ(Write(cookie, ProgramImage()), E_FAIL);
    Close(cookie);
    cookie = Open(L"a.sol", true);
    EXPECT_EQ(Write(cookie, "data"), E_ACCESSDENIED);
    Close(cookie);
    EXPECT_EQ(broker->BrokerCreateFile(Name(In(L"a.exe")).Get(), 0, 1, &cookie), E_ACCESSDENIED);
    EXPECT_EQ(broker->BrokerMoveFileEx(Name(In(L"a.sol")).Get(), Name(In(L"b.sol")).Get(), 1), S_OK);
    BString name;
    ULONG attributes = 0;
    EXPECT_EQ(broker->BrokerFindFirstFile(Name(In(L"*")).Get(), name.Receive(), &attributes, &cookie), S_OK);
    EXPECT_EQ(broker->BrokerFindClose(cookie), S_OK);
    EXPECT_EQ(broker->BrokerDeleteFile(Name(In(L"b.sol")).Get()), S_OK);
    EXPECT_EQ(broker->BrokerDeleteFile(Name(In(L"b.sol")).Get()), kNotFound);
  };
  EXPECT_TRUE(LeavesNothing(40, round));

  // The measure itself: one event or one brush kept in every fifth round is seen.
  std::vector<KernelHandle> events;
  EXPECT_FALSE(LeavesNothing(40, [&events](int i) {
    if (i % 5 == 0) events.emplace_back(CreateEventW(nullptr, TRUE, FALSE, nullptr));
  }));
  std::vector<GdiObject> brushes;
  EXPECT_FALSE(LeavesNothing(40, [&brushes](int i) {
    if (i % 5 == 0) brushes.emplace_back(CreateSolidBrush(static_cast<COLORREF>(i)));
  }));
}

}  // namespace
