// Protection queries, identity lists and the worker, against stand-ins that answer what real systems do.
#include "tests/broker/ProtectionFixture.h"

#include "broker/DeferredOpening.h"
#include "broker/EnterpriseIdentityList.h"

namespace {

using Step = EnterpriseControls::Step;
using Of = EnterpriseIdentityList::Of;

class Protection : public ProtectionTest {};

TEST_F(Protection, FourStatusesCountAsProtected) {
  data.identity = L"contoso.example";
  for (const bool elsewhere : {false, true}) {
    data.onAnotherThread = elsewhere;
    for (int status = 0; status <= 10; ++status) {
      data.status = status;
      const BrokerFileProtectionInfo info(path.c_str());
      const bool expected = status == 3 || status == 4 || status == 5 || status == 7;
      EXPECT_EQ(info.IsProtected(), expected) << status;
      EXPECT_EQ(ToUtf8(info.GetIdentity()), expected ? "contoso.example" : "") << status;
    }
  }
}

TEST_F(Protection, AQueryThatFailsAtAnyStepLeavesTheFileUnprotected) {
  data.status = 3;
  for (int step = Step::FileFactory; step <= Step::InfoIdentity; ++step) {
    for (const bool elsewhere : {false, true}) {
      data.onAnotherThread = elsewhere;
      data.fails = static_cast<Step>(step);
      EXPECT_FALSE(BrokerFileProtectionInfo(path.c_str()).IsProtected()) << step;
    }
  }
}

TEST_F(Protection, TheWorkerStopsOnceAndStartsAnew) {
  EXPECT_FALSE(BrokerFileProtectionInfo((path + L"x").c_str()).IsProtected());
  EXPECT_EQ(data.queries, 0) << "a missing file is not asked about";
  data.status = 3;
  EXPECT_TRUE(BrokerFileProtectionInfo(path.c_str()).IsProtected());
  StopTask();
  StopTask();
  EXPECT_TRUE(BrokerFileProtectionInfo(path.c_str()).IsProtected());
}

TEST_F(Protection, IdentityListsByTheAnswersOfTheService) {
  srp.serverIds[0] = L"one.example";
  srp.serverIds[1] = L"two.example";
  const struct {
    SrpControls::Mode mode;
    bool found;
    int32_t calls;
  } rows[] = {{SrpControls::Normal, true, 2},
              {SrpControls::WantsBufferAtOnce, true, 2},
              {SrpControls::NoIdentities, false, 1},
              {SrpControls::Fails, false, 1},
              {SrpControls::SecondCallFails, false, 2}};
  for (const auto& row : rows) {
    srp.mode = row.mode;
    srp.calls = 0;
    const EnterpriseIdentityList list(Of::ServerProcess);
    EXPECT_EQ(list.HasIdentity(), row.found) << row.mode;
    EXPECT_EQ(list.Contains(L"two.example"), row.found) << row.mode;
    EXPECT_EQ(srp.calls, row.calls) << row.mode;
  }
  srp.mode = SrpControls::Normal;
  srp.serverIds[0] = L"";
  EXPECT_FALSE(EnterpriseIdentityList(Of::ServerProcess).HasIdentity()) << "an empty first identity is none";
}

TEST_F(Protection, TheClientsListIsReadUnderImpersonationAndGivenBack) {
  srp.mode = SrpControls::Normal;
  srp.serverIds[0] = L"server.example";
  srp.clientIds[0] = L"client.example";
  EXPECT_FALSE(EnterpriseIdentityList(Of::CallingClient).HasIdentity()) << "no call is being served";
  const ServedCall call;
  EXPECT_EQ(ToUtf8(EnterpriseIdentityList(Of::CallingClient).First()), "client.example");
  EXPECT_EQ(ToUtf8(EnterpriseIdentityList(Of::ServerProcess).First()), "server.example");
  HANDLE token = nullptr;
  EXPECT_FALSE(OpenThreadToken(GetCurrentThread(), TOKEN_QUERY, TRUE, &token)) << "the thread is itself again";
}

TEST_F(Protection, ADeferredFileIsProtectedBeforeItIsOpened) {
  srp.mode = SrpControls::Normal;
  srp.serverIds[0] = L"server.example";
  const Edpwin32DllHelper helper;
  ASSERT_NE(helper.ProtectFileToEnterpriseIdentity, nullptr);
  for (const bool exists : {false, true}) {
    const HRESULT protects = exists ? E_ACCESSDENIED : S_OK;
    DeleteFileW(path.c_str());
    if (exists) testing_files::WriteWhole(path, "old");
    efs = {};
    efs.result = protects;
    BrokerCookieRecord record;
    record.filePath = path;
    record.deferredOpen = std::make_unique<DeferredOpen>();
    record.deferredOpen->desiredAccess = GENERIC_WRITE;
    record.deferredOpen->creationDisposition = CREATE_ALWAYS;
    record.deferredOpen->identity = L"chosen.example";
    const FileHandle file(OpenDeferred(record, Kernel32(), helper));
    EXPECT_EQ(file.IsValid(), protects == S_OK);
    EXPECT_EQ(ToUtf8(efs.identity), "chosen.example");
    EXPECT_EQ(record.deferredOpen, nullptr);
  }
  EXPECT_EQ(testing_files::ReadWhole(path), "") << "what was to be made anew was, though not opened";
}

}  // namespace
