// What the dialog methods ask of the platform, step by step, and what becomes of a step that fails.
#include <windows.h>

#include <commdlg.h>

#include "tests/broker/ProtectionFixture.h"
#include "tests/fakes/DialogFakes.h"
#include "tests/support/ByteArray.h"
#include "tests/support/FilterText.h"
#include "tests/support/ImportHook.h"

namespace {

using dialog_fakes::g_choice;
using shell_fakes::g_record;
using Calls = std::vector<std::string>;

constexpr HRESULT kPlatformsOwn = E_UNEXPECTED;

// This process runs from the folder of installed programs, so a window of its own may have dialogs.
class DialogSteps : public ProtectionTest {
 protected:
  DialogSteps() {
    g_record = {};
    g_choice = {};
    g_choice.items = {{path, L"a.sol"}};
  }
  ~DialogSteps() override { DestroyWindow(window); }

  [[nodiscard]] ULONG Window() const { return static_cast<ULONG>(reinterpret_cast<uintptr_t>(window)); }
  HRESULT Open(std::string& chosen, ULONG flags = 0) {
    VARIANT entries;
    const std::string filters = FilterBytes(L"Texts\\0*.txt\\0All\\0*.*\\0");
    const HRESULT result = broker->BrokerOpenDialog(Window(), 2, static_cast<ULONG>(filters.size()),
                                                    ByteArray(filters).Get(), flags, &entries);
    chosen = TakeEntries(entries);
    return result;
  }
  HRESULT Save(ULONG& cookie, BString& chosen, ULONG flags = 0) {
    cookie = 77;
    return broker->BrokerSaveDialog2(Window(), const_cast<wchar_t*>(L"first.txt"), 0, 0, nullptr, flags, &cookie,
                                     chosen.Receive());
  }

  const HWND window = CreateWindowExW(0, L"Static", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
  ComPtr<ILumenBroker6> broker = NewBroker();
  shell_fakes::Registered<dialog_fakes::OpenDialog> openClass{CLSID_FileOpenDialog};
  shell_fakes::Registered<dialog_fakes::SaveDialog> saveClass{CLSID_FileSaveDialog};
};

TEST_F(DialogSteps, OpenAsksInOrderAndKeepsItsOwnOptions) {
  std::string chosen;
  EXPECT_EQ(Open(chosen, 0xFFFFFFFF), S_OK);
  EXPECT_EQ(chosen, ToUtf8(path));
  const Calls wanted = {"SetFileTypes Texts=*.txt;All=*.*;",
                        "SetOptions ff31ff1a",
                        "Show on a window",
                        "GetResults",
                        "GetCount",
                        "GetItemAt 0",
                        "GetDisplayName"};
  EXPECT_EQ(g_record.calls, wanted);
}

TEST_F(DialogSteps, ChosenItemsAsClientsTakeThem) {
  std::string chosen;
  g_choice.items.clear();
  EXPECT_EQ(Open(chosen), S_OK);
  EXPECT_EQ(chosen, "") << "an array with nothing in it";
  g_choice.items = {{L"C:\\a.txt\\a.txt", L"a.txt"}, {L"C:\\a.txt\\b", L"b"}, {L"C:\\a.txt\\c", L"c"}};
  EXPECT_EQ(Open(chosen), S_OK);
  EXPECT_EQ(chosen, "C:\\a.txt\\|a.txt|b|c") << "cut where the name stands last";
  g_choice.items = {{L"C:\\x\\shown.lnk", L"other"}, {L"C:\\x\\b", L"b"}};
  EXPECT_EQ(Open(chosen), S_OK);
  EXPECT_EQ(chosen, "C:\\x\\shown.lnk|other|b") << "a name that its path lacks cuts nothing";
}

TEST_F(DialogSteps, OpenReturnsTheFailureOfEachStep) {
  g_choice.items = {{L"C:\\x\\a", L"a"}, {L"C:\\x\\b", L"b"}};
  for (const char* const step :
       {"SetFileTypes", "SetOptions", "Show", "GetResults", "GetCount", "GetItemAt", "GetDisplayName"}) {
    g_record = {};
    g_record.failing = step;
    std::string chosen;
    EXPECT_EQ(Open(chosen), kPlatformsOwn) << step;
    EXPECT_EQ(chosen, "(empty)") << step;
    EXPECT_TRUE(g_record.calls.back().starts_with(step)) << "nothing more is asked behind " << step;
  }
  g_record = {};
  g_choice.nameless = true;
  std::string chosen;
  EXPECT_EQ(Open(chosen), E_FAIL);
}

TEST_F(DialogSteps, ArraysThatOnlyAClientInThisProcessCanSend) {
  EXPECT_EQ(broker->BrokerOpenDialog(Window(), 0, 0, nullptr, 0, nullptr), E_INVALIDARG);
  SAFEARRAY bare = {};
  bare.cDims = 1;
  bare.rgsabound[0].cElements = 20;
  VARIANT entries;
  EXPECT_EQ(broker->BrokerOpenDialog(Window(), 1, 20, &bare, 0, &entries), E_INVALIDARG) << "elements without a size";
  bare.cbElements = 1;
  EXPECT_EQ(broker->BrokerOpenDialog(Window(), 1, 20, &bare, 0, &entries), E_INVALIDARG) << "without data";
  const std::string filters = FilterBytes(L"All\\0*.*\\0");
  const auto length = static_cast<ULONG>(filters.size());
  const ByteArray wide(SafeArrayCreateVector(VT_I8, 0, length));
  std::copy(filters.begin(), filters.end(), static_cast<char*>(wide.Get()->pvData));
  EXPECT_EQ(broker->BrokerOpenDialog(Window(), 1, length, wide.Get(), 0, &entries), E_INVALIDARG) << "not of bytes";
  ULONG cookie = 5;
  BSTR chosen = nullptr;
  EXPECT_EQ(broker->BrokerSaveDialog2(Window(), nullptr, 0, 0, nullptr, 0, nullptr, &chosen), E_INVALIDARG);
  EXPECT_EQ(broker->BrokerSaveDialog2(Window(), nullptr, 0, 0, nullptr, 0, &cookie, nullptr), E_INVALIDARG);
  EXPECT_EQ(cookie, 5u);
  EXPECT_TRUE(g_record.calls.empty());
}

TEST_F(DialogSteps, SaveOffersTheCallersOwnerAndProtectsForTheChosenOne) {
  const ImportHook list(GetModuleHandleW(nullptr), "PSGetPropertyDescriptionListFromString",
                        &dialog_fakes::PropertyListFromText);
  srp.mode = SrpControls::Normal;
  srp.serverIds[0] = L"server.example";
  srp.clientIds[0] = L"client.example";
  g_choice.owners = {L"chosen.example", L"second.example"};
  const WideString target = directory.Path() + L"\\new.txt";
  g_choice.items = {{target, L"new.txt"}};
  ULONG cookie = 0, count = 0;
  BString chosen;
  {
    const ServedCall call;
    ASSERT_EQ(Save(cookie, chosen, 0xFFFFFFFF), S_OK);
  }
  const Calls wanted = {"SetFileName first.txt",
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

TEST_F(DialogSteps, NoOwnerIsNoHindrance) {
  const ImportHook list(GetModuleHandleW(nullptr), "PSGetPropertyDescriptionListFromString",
                        &dialog_fakes::PropertyListFromText);
  srp.mode = SrpControls::Normal;
  srp.serverIds[0] = L"server.example";
  const struct {
    const char* failing;
    std::vector<WideString> owners;
  } rows[] = {{"", {}},
              {"", {L""}},
              {"", {L"", L"second.example"}},
              {"PropertyList", {L""}},
              {"SetCollectedProperties", {L""}},
              {"SetProperties", {L""}},
              {"GetProperties", {L"chosen.example"}}};
  for (const auto& row : rows) {
    g_record = {};
    g_record.failing = row.failing;
    g_choice.owners = row.owners;
    ULONG cookie = 0, position = 0;
    BString chosen;
    ASSERT_EQ(Save(cookie, chosen), S_OK) << row.failing;
    EXPECT_EQ(broker->BrokerSetFilePointer(cookie, 0, FILE_BEGIN, &position), S_OK) << row.failing;
    EXPECT_EQ(efs.calls, 0) << row.failing;
    EXPECT_EQ(broker->BrokerCloseHandle(cookie), S_OK);
  }
  EXPECT_EQ(g_record.calls[4], "SetProperties 1 ''") << "a caller without identity offers an empty one";
}

TEST_F(DialogSteps, SaveReturnsTheFailureOfEachStep) {
  for (const std::string step : {"SetFileName", "SetOptions", "Show", "GetResult", "GetDisplayName", ""}) {
    g_record = {};
    g_record.failing = step;
    g_choice.nameless = step.empty();
    ULONG cookie = 0;
    BString chosen;
    EXPECT_EQ(Save(cookie, chosen), step.empty() || step == "GetDisplayName" ? E_FAIL : kPlatformsOwn) << step;
    EXPECT_EQ(cookie, 0u) << step;
    EXPECT_EQ(chosen.Get(), nullptr) << step;
  }
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

struct PrintCall {
  BOOL answer = TRUE;
  PRINTDLGW asked = {};
  HGLOBAL mode = nullptr;
  HGLOBAL names = nullptr;
};
PrintCall g_print;

BOOL WINAPI FakePrintDlg(LPPRINTDLGW dialog) {
  g_print.asked = *dialog;
  dialog->hDevMode = g_print.mode = GlobalAlloc(GMEM_MOVEABLE, 16);
  dialog->hDevNames = g_print.names = GlobalAlloc(GMEM_MOVEABLE, 16);
  dialog->nFromPage = 3;
  dialog->nToPage = 4;
  dialog->Flags = PD_PAGENUMS;
  dialog->hDC = reinterpret_cast<HDC>(static_cast<intptr_t>(0x1280010047));
  return g_print.answer;
}

TEST_F(DialogSteps, PrintPassesPagesBothWaysAndFreesTheDeviceMemory) {
  const ImportHook hook(GetModuleHandleW(nullptr), "PrintDlgW", &FakePrintDlg);
  for (const BOOL answer : {TRUE, FALSE}) {
    g_print.answer = answer;
    ULONG from = 0x50002, to = 0x70009, flags = PD_RETURNDC | PD_ALLPAGES, dc = 11;
    EXPECT_EQ(broker->BrokerPrintDialog(0x80000004, &from, &to, &flags, &dc), answer ? S_OK : E_FAIL);
    EXPECT_EQ(g_print.asked.lStructSize, 120u);
    EXPECT_EQ(g_print.asked.hwndOwner, reinterpret_cast<HWND>(static_cast<intptr_t>(-0x7FFFFFFC)))
        << "whosever window it is";
    EXPECT_EQ(g_print.asked.Flags, static_cast<DWORD>(PD_RETURNDC | PD_ALLPAGES));
    const PRINTDLGW& asked = g_print.asked;
    const std::vector<WORD> pages = {asked.nFromPage, asked.nMinPage, asked.nToPage, asked.nMaxPage, asked.nCopies};
    EXPECT_EQ(pages, (std::vector<WORD>{2, 2, 9, 9, 1}));
    EXPECT_EQ(from, answer ? 3u : 0x50002u);
    EXPECT_EQ(to, answer ? 4u : 0x70009u);
    EXPECT_EQ(flags, static_cast<ULONG>(answer ? PD_PAGENUMS : PD_RETURNDC | PD_ALLPAGES));
    EXPECT_EQ(dc, answer ? 0x80010047u : 11u) << "the low 32 bits";
    EXPECT_EQ(GlobalFlags(g_print.mode), static_cast<UINT>(GMEM_INVALID_HANDLE));
    EXPECT_EQ(GlobalFlags(g_print.names), static_cast<UINT>(GMEM_INVALID_HANDLE));
  }
  // Hooks and templates that the call cannot bring.
  for (ULONG flag = PD_ENABLEPRINTHOOK; flag <= PD_ENABLESETUPTEMPLATEHANDLE; flag <<= 1) {
    g_print = {};
    ULONG pages = 1, flags = PD_RETURNDC | flag, dc = 11;
    EXPECT_EQ(broker->BrokerPrintDialog(0, &pages, &pages, &flags, &dc), E_FAIL) << flag;
    EXPECT_EQ(g_print.asked.lStructSize, 0u) << "the platform is not asked with " << flag;
  }
  ULONG value = 0;
  EXPECT_EQ(broker->BrokerPrintDialog(0, nullptr, &value, &value, &value), E_INVALIDARG);
  EXPECT_EQ(broker->BrokerPrintDialog(0, &value, nullptr, &value, &value), E_INVALIDARG);
  EXPECT_EQ(broker->BrokerPrintDialog(0, &value, &value, nullptr, &value), E_INVALIDARG);
  EXPECT_EQ(broker->BrokerPrintDialog(0, &value, &value, &value, nullptr), E_INVALIDARG);
}

}  // namespace
