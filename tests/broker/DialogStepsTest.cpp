// What becomes of the save dialog's cookie while its file is being opened.
#include <windows.h>

#include <shlwapi.h>

#include "tests/broker/ProtectionFixture.h"
#include "tests/fakes/ShellFakes.h"
#include "tests/support/ByteArray.h"

namespace {

using shell_fakes::g_record;

// A save dialog in which the user always chooses the same.
WideString g_chosen;
struct Item final : SlotFake<IShellItem> {
  Item() {
    On(&IShellItem::GetDisplayName, [](void*, SIGDN, LPWSTR* name) { return SHStrDupW(g_chosen.c_str(), name); });
  }
};
struct SaveDialog final : SlotFake<IFileSaveDialog> {
  SaveDialog() {
    On(&IFileSaveDialog::Show, [](void*, HWND) -> HRESULT { return S_OK; });
    On(&IFileSaveDialog::SetOptions, [](void*, FILEOPENDIALOGOPTIONS) -> HRESULT { return S_OK; });
    On(&IFileSaveDialog::GetResult,
       [](void*, IShellItem** item) -> HRESULT { return *item = (new Item)->Get(), S_OK; });
  }
};

// This process runs from the folder of installed programs, so a window of its own may have dialogs.
class DialogSteps : public ProtectionTest {
 protected:
  DialogSteps() { g_record = {}, g_chosen = path; }
  ~DialogSteps() override { DestroyWindow(window); }

  const HWND window = CreateWindowExW(0, L"Static", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
  const ULONG owner = static_cast<ULONG>(reinterpret_cast<uintptr_t>(window));
  ComPtr<ILumenBroker6> broker = NewBroker();
  const shell_fakes::Registered<SaveDialog> dialogs{CLSID_FileSaveDialog};
};

TEST_F(DialogSteps, CookieMayGoWhileItsFileIsBeingOpened) {
  const shell_fakes::Registered<shell_fakes::Attachment> attachments{__uuidof(AttachmentServices)};
  for (const bool closing : {true, false}) {
    ULONG cookie = 0, count = 0;
    BString chosen;
    ASSERT_EQ(broker->BrokerSaveDialog2(owner, nullptr, 0, 0, nullptr, 0, &cookie, chosen.Receive()), S_OK);
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
