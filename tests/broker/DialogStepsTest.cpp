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
  HRESULT Open(std::string& chosen) {
    VARIANT entries;
    const HRESULT result = broker->BrokerOpenDialog(Window(), 2, static_cast<ULONG>(filters.size()),
                                                    ByteArray(filters).Get(), 0xFFFFFFFF, &entries);
    chosen = TakeEntries(entries);
    return result;
  }
  HRESULT Save(ULONG& cookie, BString& chosen) {
    cookie = 77;
    return broker->BrokerSaveDialog2(Window(), const_cast<wchar_t*>(L"first.txt"), 2,
                                     static_cast<ULONG>(filters.size()), ByteArray(filters).Get(), 0xFFFFFFFF, &cookie,
                                     chosen.Receive());
  }

  const std::string filters = FilterBytes(L"Texts\\0*.txt\\0All\\0*.*\\0");
  const HWND window = CreateWindowExW(0, L"Static", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
  const ImportHook list{GetModuleHandleW(nullptr), "PSGetPropertyDescriptionListFromString",
                        &dialog_fakes::PropertyListFromText};
  ComPtr<ILumenBroker6> broker = NewBroker();
  shell_fakes::Registered<dialog_fakes::OpenDialog> openClass{CLSID_FileOpenDialog};
  shell_fakes::Registered<dialog_fakes::SaveDialog> saveClass{CLSID_FileSaveDialog};
};

TEST_F(DialogSteps, ChosenItemsAsClientsTakeThem) {
  const struct {
    const char* why;
    decltype(g_choice.items) items;
    const char* wanted;
  } rows[] = {{"an array with nothing in it", {}, ""},
              {"cut where the name stands last",
               {{L"C:\\a.txt\\a.txt", L"a.txt"}, {L"C:\\a.txt\\b", L"b"}},
               "C:\\a.txt\\|a.txt|b"},
              {"a name that its path lacks cuts nothing",
               {{L"C:\\x\\shown.lnk", L"other"}, {L"C:\\x\\b", L"b"}},
               "C:\\x\\shown.lnk|other|b"}};
  for (const auto& row : rows) {
    std::string chosen;
    g_choice.items = row.items;
    EXPECT_EQ(Open(chosen), S_OK) << row.why;
    EXPECT_EQ(chosen, row.wanted) << row.why;
  }
}

// For the name of nobody, "", the names are null.
TEST_F(DialogSteps, FailureOfEachStepIsReturnedAsItStands) {
  g_choice.items = {{path, L"a.sol"}, {path, L"a.sol"}};
  const auto fail = [](const std::string& step) {
    g_record = {};
    g_record.failing = step;
    g_choice.nameless = step.empty();
  };
  for (const std::string step :
       {"SetFileTypes", "SetOptions", "Show", "GetResults", "GetCount", "GetItemAt", "GetDisplayName", ""}) {
    fail(step);
    std::string chosen;
    EXPECT_EQ(Open(chosen), step.empty() ? E_FAIL : kPlatformsOwn) << step;
    EXPECT_EQ(chosen, "(empty)") << step;
    EXPECT_TRUE(g_record.calls.back().starts_with(step)) << "nothing more is asked behind " << step;
    if (g_record.calls.size() > 1) EXPECT_EQ(g_record.calls[1], "SetOptions ff31ff1a");
  }
  for (const std::string step :
       {"SetFileName", "SetFileTypes", "SetOptions", "Show", "GetResult", "GetDisplayName", ""}) {
    fail(step);
    ULONG cookie = 0;
    BString chosen;
    EXPECT_EQ(Save(cookie, chosen), step.empty() || step == "GetDisplayName" ? E_FAIL : kPlatformsOwn) << step;
    EXPECT_EQ(cookie, 0u) << step;
    EXPECT_EQ(chosen.Get(), nullptr) << step;
  }
}

TEST_F(DialogSteps, ArraysOfOtherThanBytesAndMissingReplies) {
  const auto length = static_cast<ULONG>(filters.size());
  const ByteArray wide(SafeArrayCreateVector(VT_I8, 0, length));
  std::copy(filters.begin(), filters.end(), static_cast<char*>(wide.Get()->pvData));
  VARIANT entries;
  EXPECT_EQ(broker->BrokerOpenDialog(Window(), 2, length, wide.Get(), 0, &entries), E_INVALIDARG);
  EXPECT_EQ(broker->BrokerOpenDialog(Window(), 0, 0, nullptr, 0, nullptr), E_INVALIDARG);
  ULONG cookie = 5;
  BSTR chosen = nullptr;
  EXPECT_EQ(broker->BrokerSaveDialog2(Window(), nullptr, 0, 0, nullptr, 0, nullptr, &chosen), E_INVALIDARG);
  EXPECT_EQ(broker->BrokerSaveDialog2(Window(), nullptr, 0, 0, nullptr, 0, &cookie, nullptr), E_INVALIDARG);
  EXPECT_TRUE(g_record.calls.empty());
}

TEST_F(DialogSteps, SaveOffersTheCallersOwnerAndProtectsForTheChosenOne) {
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
    ASSERT_EQ(Save(cookie, chosen), S_OK);
  }
  const Calls wanted = {"SetFileName first.txt",
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

TEST_F(DialogSteps, NoOwnerIsNoHindrance) {
  srp.mode = SrpControls::Normal;
  srp.serverIds[0] = L"server.example";
  const struct {
    const char* failing;
    std::vector<WideString> owners;
  } rows[] = {{"", {}},
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
  EXPECT_EQ(g_record.calls[5], "SetProperties 1 ''") << "a caller without identity offers an empty one";
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

// What PrintDlgW was given, what it answers, and the device memory that it leaves to its caller.
PRINTDLGW g_asked = {};
BOOL g_answer = TRUE;
HGLOBAL g_memory[2];

BOOL WINAPI FakePrintDlg(LPPRINTDLGW dialog) {
  g_asked = *dialog;
  dialog->hDevMode = g_memory[0] = GlobalAlloc(GMEM_MOVEABLE, 16);
  dialog->hDevNames = g_memory[1] = GlobalAlloc(GMEM_MOVEABLE, 16);
  dialog->nFromPage = 3;
  dialog->nToPage = 4;
  dialog->Flags = PD_PAGENUMS;
  dialog->hDC = reinterpret_cast<HDC>(static_cast<intptr_t>(0x1280010047));
  return g_answer;
}

TEST_F(DialogSteps, PrintPassesPagesBothWaysAndFreesTheDeviceMemory) {
  const ImportHook hook(GetModuleHandleW(nullptr), "PrintDlgW", &FakePrintDlg);
  using Values = std::vector<ULONG>;
  for (const BOOL answer : {TRUE, FALSE}) {
    g_answer = answer;
    ULONG from = 0x50002, to = 0x70009, flags = PD_RETURNDC, dc = 11;
    EXPECT_EQ(broker->BrokerPrintDialog(0x80000004, &from, &to, &flags, &dc), answer ? S_OK : E_FAIL);
    EXPECT_EQ(g_asked.hwndOwner, reinterpret_cast<HWND>(static_cast<intptr_t>(-0x7FFFFFFC))) << "whosever it is";
    EXPECT_EQ((Values{g_asked.lStructSize, g_asked.Flags, g_asked.nFromPage, g_asked.nMinPage, g_asked.nToPage,
                      g_asked.nMaxPage, g_asked.nCopies}),
              (Values{120, PD_RETURNDC, 2, 2, 9, 9, 1}));
    EXPECT_EQ((Values{from, to, flags, dc}),
              answer ? (Values{3, 4, PD_PAGENUMS, 0x80010047}) : (Values{0x50002, 0x70009, PD_RETURNDC, 11}));
    for (const HGLOBAL memory : g_memory) EXPECT_EQ(GlobalFlags(memory), static_cast<UINT>(GMEM_INVALID_HANDLE));
  }
  // Hooks and templates that the call cannot bring.
  g_asked = {};
  for (ULONG flag = PD_ENABLEPRINTHOOK; flag <= PD_ENABLESETUPTEMPLATEHANDLE; flag <<= 1) {
    ULONG pages = 1, flags = PD_RETURNDC | flag, dc = 11;
    EXPECT_EQ(broker->BrokerPrintDialog(0, &pages, &pages, &flags, &dc), E_FAIL) << flag;
  }
  for (size_t missing = 0; missing < 4; ++missing) {
    ULONG value = 0;
    ULONG* at[] = {&value, &value, &value, &value};
    at[missing] = nullptr;
    EXPECT_EQ(broker->BrokerPrintDialog(0, at[0], at[1], at[2], at[3]), E_INVALIDARG);
  }
  EXPECT_EQ(g_asked.lStructSize, 0u) << "the platform is not asked";
}

}  // namespace
