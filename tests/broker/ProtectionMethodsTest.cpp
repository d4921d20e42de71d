// What a client's identity decides in opening, the audited open, and the marks of the internet.
#include "tests/broker/ProtectionFixture.h"

#include "broker/ZoneMarks.h"
#include "tests/fakes/ShellFakes.h"

namespace {

using Step = FakeControls::Step;
using shell_fakes::g_record;

TEST_F(ProtectionTest, FourStatusesCountAsProtected) {
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

class ProtectedFiles : public ProtectionTest {
 protected:
  ProtectedFiles() { data.identity = L"contoso.example"; }
  // Opens as a client with these identities, on a server with those.
  HRESULT Open(const wchar_t* client, const wchar_t* server, bool read, const WideString& file) {
    srp.serverIds[0] = server;
    srp.clientIds[0] = client;
    const ComPtr<ILumenBroker6> broker = NewBroker();
    const ServedCall call;
    ULONG cookie = 0;
    const HRESULT result = broker->BrokerCreateFile(BString(WideView(file)).Get(), read ? 1 : 0, 0, &cookie);
    if (SUCCEEDED(result)) EXPECT_EQ(broker->BrokerCloseHandle(cookie), S_OK);
    return result;
  }
};

TEST_F(ProtectedFiles, ReadingByIdentity) {
  constexpr const wchar_t *kFiles = L"contoso.example", *kOther = L"other.example";
  const struct {
    const wchar_t *client, *server, *owner;  // without an owner the file is not protected
    HRESULT result;
  } rows[] = {{nullptr, nullptr, kFiles, S_OK},          {kFiles, nullptr, kFiles, S_OK},
              {kOther, nullptr, kFiles, E_ACCESSDENIED}, {L"Contoso.example", nullptr, kFiles, E_ACCESSDENIED},
              {kOther, nullptr, nullptr, S_OK},          {kOther, nullptr, L"", S_OK},
              {nullptr, kFiles, kFiles, E_ACCESSDENIED}, {nullptr, kFiles, nullptr, S_OK}};
  for (const auto& row : rows) {
    data.status = row.owner == nullptr ? 1 : 3;
    data.identity = row.owner == nullptr ? L"" : row.owner;
    EXPECT_EQ(Open(row.client, row.server, true, path), row.result) << &row - rows;
  }
}

TEST_F(ProtectedFiles, ANewSharedObjectIsProtectedToItsClientBeforeItIsOpened) {
  const WideString folder = directory.Path() + L"\\#SharedObjects";
  testing_files::MakeDirectories(folder);
  constexpr const wchar_t *kClient = L"client.example", *kServer = L"server.example";
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(Open(kClient, kServer, false, folder + L"\\b.sol"), S_OK);
    EXPECT_EQ(efs.calls, 1) << "one that is there stays as it is";
  }
  EXPECT_EQ(ToUtf8(efs.protectedFor), "client.example");
  EXPECT_EQ(Open(kClient, kServer, false, directory.Path() + L"\\c.sol"), S_OK);
  EXPECT_EQ(Open(nullptr, kServer, false, folder + L"\\d.sol"), S_OK);
  EXPECT_EQ(Open(kClient, nullptr, false, folder + L"\\e.sol"), S_OK);
  EXPECT_EQ(efs.calls, 1) << "not elsewhere, nor without either identity";
  efs.result = E_UNEXPECTED;
  EXPECT_EQ(Open(kClient, kServer, false, folder + L"\\f.sol"), E_UNEXPECTED);
}

TEST_F(ProtectedFiles, TheAuditedOpenNeedsEveryStep) {
  const struct {
    Step fails = Step::None;
    const wchar_t *server = L"contoso.example", *owner = L"contoso.example";
    bool trustedWindow = true;
    int evaluation = 0;
  } rows[] = {{},
              {.evaluation = 1},
              {.evaluation = 2},
              {.server = nullptr},
              {.server = L"other.example"},
              {.owner = L""},
              {.trustedWindow = false},
              {Step::AuditFactory},
              {Step::RequestState}};
  // A message window belongs to this very program, which the fixture's child was started as from a program folder or
  // not.
  const HWND own = CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
  const auto trusted = static_cast<ULONG>(reinterpret_cast<uintptr_t>(own));
  for (const auto& row : rows) {
    for (const bool elsewhere : {false, true}) {
      data = {};
      data.status = 3;
      data.identity = row.owner;
      data.fails = row.fails;
      data.evaluation = row.evaluation;
      data.onAnotherThread = elsewhere;
      srp.serverIds[0] = row.server;
      // A client without an identity may not read it plainly while the server has one; one with another may not at all.
      srp.clientIds[0] = L"client.example";
      const ComPtr<ILumenBroker6> broker = NewBroker();
      const ServedCall call;
      ULONG cookie = 0;
      const ULONG window = row.trustedWindow ? trusted : 0;
      // Protection without an identity is passed over by the plain open, so that row opens there.
      const bool plain = row.owner[0] == 0, consent = &row == rows;
      EXPECT_EQ(broker->BrokerOpenFileWithAuditingInfo(BString(WideView(path)).Get(), BString(L"https://remote/").Get(),
                                                       window, &cookie),
                consent || plain ? S_OK : E_ACCESSDENIED)
          << &row - rows;
      if (consent) {
        EXPECT_EQ(ToUtf8(data.source) + " " + ToUtf8(data.target), "contoso.example client.example");
        EXPECT_EQ(ToUtf8(data.auditData) + " " + ToUtf8(data.auditTarget), "a.sol https://remote/");
      }
      if (cookie != 0) EXPECT_EQ(broker->BrokerCloseHandle(cookie), S_OK);
    }
  }
}

class Marks : public ProtectionTest {
 protected:
  Marks() { g_record = {}; }
  HRESULT MarkUnsafe(BSTR file, const wchar_t* source, const wchar_t* referrer) {
    return NewBroker()->BrokerMarkFileUnsafe(file, BString(source).Get(), BString(referrer).Get());
  }
  shell_fakes::Registered<shell_fakes::Zone> zones{shell_fakes::kZoneClass};
  shell_fakes::Registered<shell_fakes::Attachment> attachments{__uuidof(AttachmentServices)};
};

using Calls = std::vector<std::string>;

TEST_F(Marks, AFileIsMarkedUnlessItHasAMark) {
  LumenBrokerZoneIdentifier::Mark(L"C:\\a");
  LumenBrokerAttachmentExecute::Mark(L"C:\\x\\..\\a");
  const Calls marked = {"SetId 3", "ZoneSave C:\\a remember", "SetLocalPath C:\\a", "SetSource http://", "Save"};
  EXPECT_EQ(g_record.calls, marked);
  g_record.loads = S_OK;
  g_record.zone = 4;
  LumenBrokerZoneIdentifier::Mark(L"C:\\a");
  LumenBrokerAttachmentExecute::Mark(L"C:\\a");
  EXPECT_EQ(g_record.calls, marked) << "nothing more";
  g_record.zone = 0;
  LumenBrokerZoneIdentifier::Mark(L"C:\\a");
  EXPECT_EQ(g_record.calls.size(), marked.size() + 2) << "a mark of zone 0 is none";
}

TEST_F(Marks, MarkingUnsafeTellsWhatItKnowsInOrder) {
  const BString file(L"C:\\a");
  EXPECT_EQ(MarkUnsafe(file.Get(), L"http://s", L"http://r"), S_OK);
  EXPECT_EQ(g_record.calls, (Calls{"SetLocalPath C:\\a", "SetReferrer http://r", "SetSource http://s", "Save"}));
  g_record.calls.clear();
  EXPECT_EQ(MarkUnsafe(file.Get(), L"", nullptr), S_OK);
  EXPECT_EQ(g_record.calls, (Calls{"SetLocalPath C:\\a", "Save"}));
}

TEST_F(Marks, WritingMarksAFileAndReadingDoesNot) {
  const ComPtr<ILumenBroker6> broker = NewBroker();
  for (const LONG read : {1, 0}) {
    ULONG cookie = 0;
    ASSERT_EQ(broker->BrokerCreateFile(BString(WideView(path)).Get(), read, 0, &cookie), S_OK);
    EXPECT_EQ(broker->BrokerCloseHandle(cookie), S_OK);
    EXPECT_EQ(g_record.calls, read == 1 ? Calls{} : (Calls{"SetId 3", "ZoneSave " + ToUtf8(path) + " remember"}));
  }
}

}  // namespace
