// The gallery as its user sees it: started with a language, its controls have that language's names, and it ends.
#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "engine/Handles.h"
#include "engine/WideText.h"
#include "tests/support/TestDesktop.h"

namespace {

[[maybe_unused]] const auto* const g_desktop = testing::AddGlobalTestEnvironment(new TestDesktop);

// The program on this test's desktop. Its window is there once it waits for input.
class GalleryProcess {
 public:
  explicit GalleryProcess(const wchar_t* arguments) {
    wchar_t desktop[64] = {};
    GetUserObjectInformationW(GetThreadDesktop(GetCurrentThreadId()), UOI_NAME, desktop, sizeof(desktop), nullptr);
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    startup.lpDesktop = desktop;
    PROCESS_INFORMATION info = {};
    WideString line = L"bin\\LumenHost.exe " + WideString(arguments);
    if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &info)) return;
    process.Reset(info.hProcess);
    const KernelHandle thread(info.hThread);
    WaitForInputIdle(process.Get(), 30000);
    EnumThreadWindows(
        info.dwThreadId,
        [](HWND candidate, LPARAM found) {
          wchar_t name[64] = {};
          GetClassNameW(candidate, name, 64);
          if (WideView(name) != L"CorvaLumenPlayerInstaller") return TRUE;
          *reinterpret_cast<HWND*>(found) = candidate;
          return FALSE;
        },
        reinterpret_cast<LPARAM>(&window));
  }

  [[nodiscard]] std::vector<WideString> ChildTexts() const {
    std::vector<WideString> texts;
    EnumChildWindows(
        window,
        [](HWND child, LPARAM list) {
          wchar_t text[128] = {};
          SendMessageW(child, WM_GETTEXT, 128, reinterpret_cast<LPARAM>(text));
          reinterpret_cast<std::vector<WideString>*>(list)->emplace_back(text);
          return TRUE;
        },
        reinterpret_cast<LPARAM>(&texts));
    return texts;
  }
  DWORD End() {
    DWORD code = STILL_ACTIVE;
    if (WaitForSingleObject(process.Get(), 30000) == WAIT_OBJECT_0) GetExitCodeProcess(process.Get(), &code);
    return code;
  }

  KernelHandle process;
  HWND window = nullptr;
};

TEST(Gallery, SpeaksTheLanguageItIsGiven) {
  for (const auto& [arguments, close] :
       {std::pair{L"-gallery de", L"SCHLIESSEN"}, {L"-gallery ja", L"\u9589\u3058\u308B"}}) {
    GalleryProcess gallery(arguments);
    ASSERT_NE(gallery.window, nullptr) << ToUtf8(arguments);
    const std::vector<WideString> texts = gallery.ChildTexts();
    EXPECT_EQ(std::count(texts.begin(), texts.end(), WideString(close)), 1) << ToUtf8(arguments);
    EXPECT_EQ(texts.size(), 9u) << "three buttons, four marks, two buttons below";
    PostMessageW(gallery.window, WM_CLOSE, 0, 0);
    EXPECT_EQ(gallery.End(), 0u);
  }
}

TEST(Gallery, EndsByItsOwnButton) {
  GalleryProcess gallery(L"-gallery");
  ASSERT_NE(gallery.window, nullptr);
  const HWND close = GetDlgItem(gallery.window, 100);
  ASSERT_NE(close, nullptr);
  PostMessageW(close, WM_KEYDOWN, VK_RETURN, 0);
  PostMessageW(close, WM_KEYUP, VK_RETURN, 0);
  EXPECT_EQ(gallery.End(), 0u);
}

}  // namespace
