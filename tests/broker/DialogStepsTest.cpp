// What the save dialog asks of the platform, step by step, and what becomes of its cookie.
#include <windows.h>

#include "tests/broker/ProtectionFixture.h"
#include "tests/fakes/DialogFakes.h"
#include "tests/support/ByteArray.h"
#include "tests/support/FilterText.h"
#include "tests/support/ImportHook.h"

namespace {

using dialog_fakes::g_choice;
using shell_fakes::g_record;

// This process runs from the folder of installed programs, so a window of its own may have dialogs.
class DialogSteps : public ProtectionTest {
 protected:
  DialogSteps() {
    g_record = {};
    g_choice = {};
    g_choice.path = path;
  }
  ~DialogSteps() override { DestroyWindow(window); }

  HRESULT Save(ULONG& cookie, BString& chosen) {
    cookie = 77;
    const auto owner = static_cast<ULONG>(reinterpret_cast<uintptr_t>(window));
    return broker->BrokerSaveDialog2(owner, const_cast<wchar_t*>(L"first.txt"), 2, static_cast<ULONG>(filters.size()),
                                     ByteArray(filters).Get(), 0xFFFFFFFF, &cookie, chosen.Receive());
  }

  const std::string filters = FilterBytes(L"Texts\\0*.txt\\0All\\0*.*\\0");
  const HWND window = CreateWindowExW(0, L"Static", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
  const ImportHook list{GetModuleHandleW(nullptr), "PSGetPropertyDescriptionListFromString",
                        &dialog_fakes::PropertyListFromText};
  ComPtr<ILumenBroker6> broker = NewBroker();
  shell_fakes::Registered<dialog_fakes::SaveDialog> saveClass{CLSID_FileSaveDialog};
};

TEST_F(DialogSteps, SaveOffersTheCallersOwnerAndProtectsForTheChosenOne) {
  srp.mode = SrpControls::Normal;
  srp.serverIds[0] = L"server.example";
  srp.clientIds[0] = L"client.example";
  g_choice.owners = {L"chosen.example", L"second.example"};
  const WideString target = directory.Path() + L"\\new.txt";
  g_choice.path = target;
  ULONG cookie = 0, count = 0;
  BString chosen;
  {
    const ServedCall call;
    ASSERT_EQ(Save(cookie, chosen), S_OK);
  }
  const std::vector<std::string> wanted = {"SetFileName first.txt",
                                           "SetFileTypes Texts=*.txt;All=*.*;",
                                           "SetOptions ff31ff1a",
                                           "PropertyList prop:System.Security.EncryptionOwners",
                                           "SetCollectedProperties of a list",
                                           "SetProperties 1 'client.example'",
                                           "Show on a window",
                                           "GetResult",
                                           "GetDisplayName",
                                           "GetProperties"};
  EXPECT_EQ(g_record.calls, wanted);
  EXPECT_EQ(chosen.View(), WideView(target));
  EXPECT_EQ(efs.calls, 0) << "nothing before the first write";
  EXPECT_EQ(broker->BrokerWriteFile(cookie, ByteArray("x").Get(), &count), S_OK);
  EXPECT_EQ(efs.calls, 1);
  EXPECT_EQ(ToUtf8(efs.path), ToUtf8(target));
  EXPECT_EQ(ToUtf8(efs.identity), "chosen.example");
  EXPECT_EQ(broker->BrokerCloseHandle(cookie), S_OK);
}

TEST_F(DialogSteps, CookieMayGoWhileItsFileIsBeingOpened) {
  const shell_fakes::Registered<shell_fakes::Attachment> attachments{__uuidof(AttachmentServices)};
  for (const bool closing : {true, false}) {
    ULONG cookie = 0, count = 0;
    BString chosen;
    ASSERT_EQ(Save(cookie, chosen), S_OK);
    HRESULT meanwhile = E_UNEXPECTED;
    g_record.meanwhile = [&] {
      meanwhile = closing ? broker->BrokerCloseHandle(cookie)
                          : broker->BrokerWriteFile(cookie, ByteArray("early").Get(), &count);
    };
    EXPECT_EQ(broker->BrokerWriteFile(cookie, ByteArray("x").Get(), &count), closing ? E_INVALIDARG : S_OK);
    EXPECT_EQ(meanwhile == S_OK, closing) << "the file is not open yet";
    EXPECT_EQ(broker->BrokerCloseHandle(cookie), closing ? E_INVALIDARG : S_OK);
    EXPECT_EQ(testing_files::ReadWhole(path), closing ? "" : "x");
    EXPECT_TRUE(DeleteFileW(path.c_str())) << "nothing holds it";
  }
}

}  // namespace
