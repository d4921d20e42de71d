// A desktop for the windows of one test process and of what it starts. Without it they would land on the desktop of
// whoever came first, with that one's display or with none.
//
// Each test that shows windows has DISPLAY in its lumen_test, which runs it by tools/with-display, and registers this:
//   const auto* const g_desktop = testing::AddGlobalTestEnvironment(new TestDesktop);
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

class TestDesktop final : public testing::Environment {
 public:
  // A process takes its display from the desktop that it is started on, before any code of its own runs. So the first
  // process only makes the desktop, starts itself again on it and ends as that one does.
  void SetUp() override {
    wchar_t started[8] = {};
    if (GetEnvironmentVariableW(kStarted, started, 8) == 0) StartAgain();
    handle_ = GetThreadDesktop(GetCurrentThreadId());
    ASSERT_NE(handle_, nullptr);
    ASSERT_NE(GetDesktopWindow(), nullptr);
  }
  // The desktop is left to the end of the process: no thread may be on it when it is closed.

  [[nodiscard]] HDESK Handle() const { return handle_; }

 private:
  static constexpr wchar_t kStarted[] = L"LUMEN_TEST_DESKTOP";

  static void StartAgain() {
    std::wstring name = L"LumenTests" + std::to_wstring(GetCurrentProcessId());
    ASSERT_NE(CreateDesktopW(name.c_str(), nullptr, nullptr, 0, GENERIC_ALL, nullptr), nullptr);
    SetEnvironmentVariableW(kStarted, L"1");
    std::fflush(nullptr);
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    startup.lpDesktop = name.data();
    PROCESS_INFORMATION process = {};
    ASSERT_TRUE(
        CreateProcessW(nullptr, GetCommandLineW(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process));
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD code = 1;
    GetExitCodeProcess(process.hProcess, &code);
    ExitProcess(code);
  }

  HDESK handle_ = nullptr;
};
