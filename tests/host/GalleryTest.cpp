// The gallery as its user sees it: started with a language, its controls have that language's names, and it ends.
#include <windows.h>

#include <gtest/gtest.h>

#include "tests/support/StartProcess.h"
#include "tests/support/TestDesktop.h"

namespace {

[[maybe_unused]] const auto* const g_desktop = testing::AddGlobalTestEnvironment(new TestDesktop);

TEST(Gallery, SpeaksTheLanguageItIsGivenAndEndsByItsOwnButton) {
  for (const auto& [arguments, close] :
       {std::pair{L"", L"CLOSE"}, {L" de", L"SCHLIESSEN"}, {L" ja", L"\u9589\u3058\u308B"}}) {
    const KernelHandle process = StartProcess(L"bin\\LumenHost.exe -gallery" + WideString(arguments));
    ASSERT_TRUE(process);
    WaitForInputIdle(process.Get(), 30000);
    const HWND button = GetDlgItem(FindWindowW(L"CorvaLumenPlayerInstaller", nullptr), 100);
    ASSERT_NE(button, nullptr);
    wchar_t text[128] = {};
    SendMessageW(button, WM_GETTEXT, 128, reinterpret_cast<LPARAM>(text));
    EXPECT_EQ(ToUtf8(text), ToUtf8(close));
    PostMessageW(button, WM_KEYDOWN, VK_RETURN, 0);
    PostMessageW(button, WM_KEYUP, VK_RETURN, 0);
    DWORD code = STILL_ACTIVE;
    EXPECT_EQ(WaitForSingleObject(process.Get(), 30000), WAIT_OBJECT_0);
    GetExitCodeProcess(process.Get(), &code);
    EXPECT_EQ(code, 0u);
  }
}

}  // namespace
