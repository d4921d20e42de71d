// The file methods when memory runs out: each allocation of a call fails in turn. Whatever fails, the call has a
// documented result, no handle and no lock is left behind, and the same call works right after.
#include <gtest/gtest.h>

#include <functional>

#include "tests/broker/FileMethodsFixture.h"
#include "tests/support/FailingAllocation.h"

namespace {

using namespace testing_files;  // NOLINT(google-build-using-namespace): a test's own vocabulary

class FileFaults : public FileMethodsFixture {
 protected:
  // Fails allocation 1, 2, 3, ... of `call`, on an object whose roots are not yet known, until a call has none left to
  // fail. `reset` takes back what a call that went through did.
  void FailEach(const char* what, const std::function<HRESULT(ILumenBroker6*)>& call,
                const std::function<void(ILumenBroker6*)>& reset) {
    int faults = 0;
    for (bool failed = true; failed && faults < kMostAllocations; faults += failed ? 1 : 0) {
      const ComPtr<ILumenBroker6> broker = NewBroker();
      const PlatformCounts untouched;
      FailingAllocation fault(faults);
      const HRESULT result = call(broker.Get());
      failed = fault.Disarm();
      EXPECT_TRUE(result == S_OK || (failed && (result == E_OUTOFMEMORY || result == E_FAIL)))
          << what << " at allocation " << faults << ": " << result;
      if (FAILED(result)) {
        EXPECT_EQ(PlatformCounts().Sum(), untouched.Sum()) << what << " at allocation " << faults;
        EXPECT_EQ(call(broker.Get()), S_OK) << what << " after allocation " << faults << " failed";
      }
      reset(broker.Get());
    }
    EXPECT_GT(faults, 0) << what;
    EXPECT_LT(faults, kMostAllocations) << what;
  }

  static constexpr int kMostAllocations = 500;
};

// Listing is not among these: a search that gets no cookie stays open, as is documented.
TEST_F(FileFaults, Opening) {
  const BString file = Name(In(L"a.sol"));
  ULONG cookie = 0;
  const auto close = [&cookie](ILumenBroker6* broker) { EXPECT_EQ(broker->BrokerCloseHandle(cookie), S_OK); };
  FailEach(
      "writing", [&](ILumenBroker6* broker) { return broker->BrokerCreateFile(file.Get(), 0, 1, &cookie); }, close);
  FailEach(
      "reading", [&](ILumenBroker6* broker) { return broker->BrokerCreateFile(file.Get(), 1, 0, &cookie); }, close);
  // Everything is closed: the file opens to the exclusion of all others.
  EXPECT_TRUE(
      FileHandle(CreateFileW(In(L"a.sol").c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr)).IsValid());
}

TEST_F(FileFaults, NamesAndDirectories) {
  const BString file = Name(In(L"a.sol")), moved = Name(In(L"b.sol")), made = Name(In(L"d"));
  const BString root = Name(directory.Path());
  const auto nothing = [](ILumenBroker6*) {};
  WriteWhole(In(L"a.sol"), "x");
  FailEach(
      "deleting", [&](ILumenBroker6* broker) { return broker->BrokerDeleteFile(file.Get()); },
      [this](ILumenBroker6*) { WriteWhole(In(L"a.sol"), "x"); });
  FailEach(
      "making", [&](ILumenBroker6* broker) { return broker->BrokerCreateDirectory(made.Get()); },
      [&](ILumenBroker6* broker) { EXPECT_EQ(broker->BrokerRemoveDirectory(made.Get()), S_OK); });
  FailEach(
      "moving", [&](ILumenBroker6* broker) { return broker->BrokerMoveFileEx(file.Get(), moved.Get(), 0); },
      [&](ILumenBroker6* broker) { EXPECT_EQ(broker->BrokerMoveFileEx(moved.Get(), file.Get(), 0), S_OK); });
  FailEach(
      "asking", [&](ILumenBroker6* broker) { return broker->BrokerIsWritablePath(file.Get(), 1); }, nothing);
  FailEach(
      "history", [&](ILumenBroker6* broker) { return broker->BrokerDeleteBrowsingHistory(root.Get()); }, nothing);
  ULONG v[9] = {};
  FailEach(
      "attributes",
      [&](ILumenBroker6* broker) {
        return broker->BrokerGetFileAttributesEx(file.Get(), &v[0], &v[1], &v[2], &v[3], &v[4], &v[5], &v[6], &v[7],
                                                 &v[8]);
      },
      nothing);
}

}  // namespace
