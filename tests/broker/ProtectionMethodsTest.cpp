// What a client's identity decides in opening, the audited open, and the marks of the internet.
#include "tests/broker/ProtectionFixture.h"

#include "broker/ZoneMarks.h"
#include "tests/fakes/ShellFakes.h"

namespace {

using Step = EnterpriseControls::Step;
using shell_fakes::g_record;

class ProtectedFiles : public ProtectionTest {
 protected:
  ProtectedFiles() {
    srp.mode = SrpControls::Normal;
    data.identity = L"contoso.example";
  }
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
  const struct {
    const char* why;
    const wchar_t* client;
    const wchar_t* server;
    int status;
    const wchar_t* owner;
    HRESULT result;
  } rows[] = {
      {"nobody has an identity", nullptr, nullptr, 3, L"contoso.example", S_OK},
      {"the client has the file's", L"contoso.example", nullptr, 3, L"contoso.example", S_OK},
      {"it has another", L"other.example", nullptr, 3, L"contoso.example", E_ACCESSDENIED},
      {"case counts", L"Contoso.example", nullptr, 3, L"contoso.example", E_ACCESSDENIED},
      {"the file is not protected", L"other.example", nullptr, 1, L"", S_OK},
      {"it is, without an identity", L"other.example", nullptr, 3, L"", S_OK},
      {"only the server has one, and the file is protected", nullptr, L"contoso.example", 3, L"contoso.example",
       E_ACCESSDENIED},
      {"only the server has one", nullptr, L"contoso.example", 1, L"", S_OK},
  };
  for (const auto& row : rows) {
    data.status = row.status;
    data.identity = row.owner;
    EXPECT_EQ(Open(row.client, row.server, true, path), row.result) << row.why;
  }
}

TEST_F(ProtectedFiles, ANewSharedObjectIsProtectedToItsClientBeforeItIsOpened) {
  testing_files::MakeDirectories(directory.Path() + L"\\#SharedObjects");
  const WideString shared = directory.Path() + L"\\#SharedObjects\\b.sol";
  EXPECT_EQ(Open(L"client.example", L"server.example", false, shared), S_OK);
  EXPECT_EQ(efs.calls, 1);
  EXPECT_EQ(ToUtf8(efs.identity), "client.example");
  EXPECT_EQ(Open(L"client.example", L"server.example", false, shared), S_OK);
  EXPECT_EQ(efs.calls, 1) << "one that is there stays as it is";
  EXPECT_EQ(Open(L"client.example", L"server.example", false, directory.Path() + L"\\c.sol"), S_OK);
  EXPECT_EQ(Open(nullptr, L"server.example", false, directory.Path() + L"\\#SharedObjects\\d.sol"), S_OK);
  EXPECT_EQ(Open(L"client.example", nullptr, false, directory.Path() + L"\\#SharedObjects\\e.sol"), S_OK);
  EXPECT_EQ(efs.calls, 1) << "not elsewhere, nor without either identity";
  efs.result = E_UNEXPECTED;
  EXPECT_EQ(Open(L"client.example", L"server.example", false, directory.Path() + L"\\#SharedObjects\\f.sol"),
            E_UNEXPECTED);
}

struct AuditRow {
  const char* why;
  Step fails = Step::None;
  const wchar_t* server = L"contoso.example";
  const wchar_t* owner = L"contoso.example";
  bool trustedWindow = true;
  int evaluation = 0;
};

TEST_F(ProtectedFiles, TheAuditedOpenNeedsEveryStep) {
  const AuditRow rows[] = {
      {"consent"},
      {.why = "blocked", .evaluation = 1},
      {.why = "still to be asked", .evaluation = 2},
      {.why = "no identity of the server's", .server = nullptr},
      {.why = "another's file", .server = L"other.example"},
      {.why = "protected without an identity", .owner = L""},
      {.why = "a window of nobody's", .trustedWindow = false},
      {"no audit entry", Step::AuditCreate},
      {"no audit class", Step::AuditFactory},
      {"no policy manager", Step::PolicyFactory},
      {"the request fails", Step::RequestStart},
      {"its handler is refused", Step::RequestHandler},
      {"it ends in an error", Step::RequestState},
      {"it has no result", Step::RequestResults},
  };
  // A message window belongs to this very program, which the fixture's child was started as from a program folder or
  // not.
  const HWND own = CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
  const auto trusted = static_cast<ULONG>(reinterpret_cast<uintptr_t>(own));
  for (const AuditRow& row : rows) {
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
          << row.why;
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
  EXPECT_EQ(MarkUnsafe(nullptr, L"", L""), E_INVALIDARG);
  for (const char* const failing : {"SetLocalPath", "SetReferrer", "SetSource", "Save"}) {
    g_record.failing = failing;
    EXPECT_EQ(MarkUnsafe(file.Get(), L"http://s", L"http://r"), E_UNEXPECTED) << failing;
  }
}

TEST_F(Marks, WritingMarksAFileAndReadingDoesNot) {
  const ComPtr<ILumenBroker6> broker = NewBroker();
  ULONG cookie = 0;
  const BString file{WideView(path)};
  ASSERT_EQ(broker->BrokerCreateFile(file.Get(), 1, 0, &cookie), S_OK);
  EXPECT_EQ(broker->BrokerCloseHandle(cookie), S_OK);
  EXPECT_EQ(g_record.calls, Calls{});
  ASSERT_EQ(broker->BrokerCreateFile(file.Get(), 0, 0, &cookie), S_OK);
  EXPECT_EQ(broker->BrokerCloseHandle(cookie), S_OK);
  EXPECT_EQ(g_record.calls, (Calls{"SetId 3", "ZoneSave " + ToUtf8(path) + " remember"}));
}

}  // namespace
