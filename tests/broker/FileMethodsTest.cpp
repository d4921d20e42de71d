// The file methods in this process, where arguments arrive that a marshaller would not let through, and where what is
// left open can be counted. What they do for a client is tested through the real server.
#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <memory>
#include <string>

#include "broker/CoLumenBrokerServer.h"
#include "tests/support/ByteArray.h"
#include "tests/support/CountFixture.h"
#include "tests/support/FailingAllocation.h"
#include "tests/support/ImportHook.h"
#include "tests/support/TestFiles.h"
#include "tests/support/UnavailableClass.h"

namespace {

using namespace testing_files;  // NOLINT(google-build-using-namespace): a test's own vocabulary

constexpr HRESULT kNotFound = static_cast<HRESULT>(0x80070002);
constexpr HRESULT kPathNotFound = static_cast<HRESULT>(0x80070003);
constexpr HRESULT kBadHandle = static_cast<HRESULT>(0x80070006);
constexpr HRESULT kSharing = static_cast<HRESULT>(0x80070020);
constexpr ULONG kUnknown = 4711;

class Files : public CountFixture {
 protected:
  // One apartment for the whole suite: the shell's file operations and COM's own end do not go together under Wine.
  struct Shared {
    ComInitializer apartment;
    UnavailableClass zoneIdentifier{{0x0968E258, 0x16C7, 0x4DBA, {0xAA, 0x86, 0x46, 0x2D, 0xD6, 0x1E, 0x31, 0xA3}}};
  };

  static void SetUpTestSuite() {
    shared = std::make_unique<Shared>();
    // Loads what the process then keeps.
    const CleanDirectory directory(PlayerDirectory());
    const ComPtr<ILumenBroker6> broker = NewBroker();
    ULONG cookie = 0;
    ASSERT_EQ(broker->BrokerCreateFile(Name(directory.Path() + L"\\a.sol").Get(), 0, 1, &cookie), S_OK);
    ASSERT_EQ(broker->BrokerCloseHandle(cookie), S_OK);
    ASSERT_EQ(broker->BrokerDeleteBrowsingHistory(Name(directory.Path()).Get()), S_OK);
  }
  static void TearDownTestSuite() { shared.reset(); }

  static BString Name(const WideString& text) { return BString(WideView(text)); }
  static ComPtr<ILumenBroker6> NewBroker() { return Adopt<ILumenBroker6>(new CoLumenBrokerServer(nullptr)); }
  [[nodiscard]] WideString In(const wchar_t* name) const { return directory.Path() + L"\\" + name; }
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

  inline static std::unique_ptr<Shared> shared;
  CleanDirectory directory{PlayerDirectory()};
  ComPtr<ILumenBroker6> broker = NewBroker();
};

TEST_F(Files, NullOutArgumentsAreRefusedBeforeAnythingIsDone) {
  WriteWhole(In(L"a.sol"), "12345");
  EXPECT_EQ(broker->BrokerCreateFile(Name(In(L"new.sol")).Get(), 0, 1, nullptr), E_INVALIDARG);
  EXPECT_FALSE(Exists(In(L"new.sol")));

  const ULONG cookie = Open(L"a.sol", true);
  ULONG values[9] = {}, attributes = 0, search = 0;
  ByteArray data(nullptr);
  BString name;
  const BString pattern = Name(In(L"*"));
  ASSERT_EQ(broker->BrokerFindFirstFile(pattern.Get(), name.Receive(), &attributes, &search), S_OK);
  for (const HRESULT refused :
       {broker->BrokerReadFile(cookie, 1, nullptr, data.Receive()), broker->BrokerReadFile(cookie, 1, values, nullptr),
        broker->BrokerSetFilePointer(cookie, 3, FILE_BEGIN, nullptr),
        broker->BrokerWriteFile(cookie, ByteArray("x").Get(), nullptr),
        broker->BrokerFindFirstFile(nullptr, name.Receive(), &attributes, values),
        broker->BrokerFindFirstFile(pattern.Get(), nullptr, &attributes, values),
        broker->BrokerFindFirstFile(pattern.Get(), name.Receive(), nullptr, values),
        broker->BrokerFindFirstFile(pattern.Get(), name.Receive(), &attributes, nullptr),
        broker->BrokerFindNextFile(search, nullptr, &attributes),
        broker->BrokerFindNextFile(search, name.Receive(), nullptr),
        // So is a cookie that nobody gave out.
        broker->BrokerCloseHandle(kUnknown), broker->BrokerCloseHandle(0), broker->BrokerFindClose(kUnknown),
        broker->BrokerSetFilePointer(kUnknown, 0, FILE_BEGIN, values), Write(kUnknown, "x"),
        broker->BrokerReadFile(kUnknown, 1, values, data.Receive()),
        broker->BrokerFindNextFile(kUnknown, name.Receive(), &attributes)}) {
    EXPECT_EQ(refused, E_INVALIDARG);
  }
  EXPECT_EQ(broker->BrokerFindNextFile(search, name.Receive(), &attributes), S_OK);
  EXPECT_EQ(broker->BrokerFindClose(search), S_OK);
  EXPECT_EQ(broker->BrokerReadFile(cookie, 9, values, data.Receive()), S_OK);
  EXPECT_EQ(data.Text().substr(0, values[0]), "12345") << "none of them moved the position";
  EXPECT_EQ(data.Text().size(), 9u) << "the array keeps the length asked for";
  Close(cookie);
  for (size_t missing = 0; missing <= 9; ++missing) {
    std::array<ULONG*, 9> out{};
    for (size_t i = 0; i < 9; ++i) out[i] = i == missing ? nullptr : &values[i];
    EXPECT_EQ(broker->BrokerGetFileAttributesEx(Name(In(L"a.sol")).Get(), out[0], out[1], out[2], out[3], out[4],
                                                out[5], out[6], out[7], out[8]),
              missing < 9 ? E_INVALIDARG : S_OK);
  }
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
  for (const bool image : {true, false}) {
    WriteWhole(In(L"a.dll"), image ? ProgramImage() : "plain");
    const ULONG cookie = Open(L"a.dll");
    EXPECT_EQ(Seek(cookie, 0x7FFFFFFF), S_OK);
    EXPECT_EQ(Write(cookie, "data"), image ? E_FAIL : S_OK) << "the file ahead of the slice counts";
    EXPECT_NE(Exists(In(L"a.dll")), image);
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
  } rows[] = {{0, kNotFound}, {1, kNotFound}, {0x20, kNotFound}, {0x2B, kNotFound},
              {0x10, E_FAIL}, {0x40, E_FAIL}, {0x11, E_FAIL},    {INT32_MIN, E_FAIL}};
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
  const ByteArray otherBytes(SafeArrayCreateVector(VT_I1, 0, 4));
  EXPECT_EQ(broker->BrokerWriteFile(writer, otherBytes.Get(), &count), S_OK) << "bytes of another type are bytes";
  Close(writer);
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

  // The measure itself: one event kept in every fifth round is seen.
  std::vector<KernelHandle> events;
  EXPECT_FALSE(LeavesNothing(40, [&events](int i) {
    if (i % 5 == 0) events.emplace_back(CreateEventW(nullptr, TRUE, FALSE, nullptr));
  }));
}

// Memory runs out: each allocation of a call fails in turn. Whatever fails, the call has a documented result, nothing
// is left behind, and the same call works right after. Listing is not among these: a search that gets no cookie stays
// open, as is documented.
class FileFaults : public Files {
 protected:
  // Fails allocation 1, 2, 3, ... of `call`, on an object whose roots are not yet known, until a call has none left to
  // fail. `reset` takes back what a call that went through did.
  void FailEach(const char* what, const std::function<HRESULT(ILumenBroker6*)>& call,
                const std::function<void(ILumenBroker6*)>& reset) {
    int faults = 0;
    for (bool failed = true; failed && faults < kMostAllocations; faults += failed ? 1 : 0) {
      const ComPtr<ILumenBroker6> fresh = NewBroker();
      const PlatformCounts untouched;
      FailingAllocation fault(faults);
      const HRESULT result = call(fresh.Get());
      failed = fault.Disarm();
      EXPECT_TRUE(result == S_OK || (failed && (result == E_OUTOFMEMORY || result == E_FAIL)))
          << what << " at allocation " << faults << ": " << result;
      if (FAILED(result)) {
        EXPECT_EQ(PlatformCounts().Sum(), untouched.Sum()) << what << " at allocation " << faults;
        EXPECT_EQ(call(fresh.Get()), S_OK) << what << " after allocation " << faults << " failed";
      }
      reset(fresh.Get());
    }
    EXPECT_GT(faults, 0) << what;
    EXPECT_LT(faults, kMostAllocations) << what;
  }

  static constexpr int kMostAllocations = 500;
};

TEST_F(FileFaults, EachAllocationOfEachCall) {
  const BString file = Name(In(L"a.sol")), moved = Name(In(L"b.sol")), made = Name(In(L"d"));
  const BString root = Name(directory.Path());
  ULONG cookie = 0, v[9] = {};
  using Broker = ILumenBroker6*;
  const auto close = [&](Broker b) { EXPECT_EQ(b->BrokerCloseHandle(cookie), S_OK); };
  const auto nothing = [](Broker) {};
  const struct {
    const char* what;
    std::function<HRESULT(Broker)> call;
    std::function<void(Broker)> reset;
  } rows[] = {
      {"writing", [&](Broker b) { return b->BrokerCreateFile(file.Get(), 0, 1, &cookie); }, close},
      {"reading", [&](Broker b) { return b->BrokerCreateFile(file.Get(), 1, 0, &cookie); }, close},
      {"deleting", [&](Broker b) { return b->BrokerDeleteFile(file.Get()); },
       [this](Broker) { WriteWhole(In(L"a.sol"), "x"); }},
      {"making", [&](Broker b) { return b->BrokerCreateDirectory(made.Get()); },
       [&](Broker b) { EXPECT_EQ(b->BrokerRemoveDirectory(made.Get()), S_OK); }},
      {"moving", [&](Broker b) { return b->BrokerMoveFileEx(file.Get(), moved.Get(), 0); },
       [&](Broker b) { EXPECT_EQ(b->BrokerMoveFileEx(moved.Get(), file.Get(), 0), S_OK); }},
      {"asking", [&](Broker b) { return b->BrokerIsWritablePath(file.Get(), 1); }, nothing},
      {"history", [&](Broker b) { return b->BrokerDeleteBrowsingHistory(root.Get()); }, nothing},
      {"attributes",
       [&](Broker b) {
         return b->BrokerGetFileAttributesEx(file.Get(), &v[0], &v[1], &v[2], &v[3], &v[4], &v[5], &v[6], &v[7], &v[8]);
       },
       nothing},
  };
  WriteWhole(In(L"a.sol"), "x");
  for (const auto& row : rows) FailEach(row.what, row.call, row.reset);
}

}  // namespace
