// A real process of a chosen name, ready when the constructor returns and ended by the destructor.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include "engine/Handles.h"
#include "tests/support/TestFiles.h"

class StartedProgram {
 public:
  // Copies the waiting program to `path` and starts it; it loads `library` when there is one, and has a
  // window for the library "window".
  explicit StartedProgram(WideString path, const WideString& library = L"") : path_(std::move(path)) {
    CopyFileW(testing_files::Beside(L"WaitingProgram.exe").c_str(), path_.c_str(), FALSE);
    WideString line = L"\"" + path_ + L"\" " + Number(GetCurrentProcessId());
    if (!library.empty()) line += L" \"" + library + L"\"";
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION started = {};
    EXPECT_TRUE(CreateProcessW(path_.c_str(), line.data(), nullptr, nullptr, FALSE, CREATE_SUSPENDED | CREATE_NO_WINDOW,
                               nullptr, nullptr, &startup, &started))
        << ToUtf8(path_);
    process_.Reset(started.hProcess);
    const KernelHandle thread(started.hThread);
    const KernelHandle ready(CreateEventW(nullptr, TRUE, FALSE, Title().c_str()));
    ResumeThread(thread.Get());
    const HANDLE either[] = {ready.Get(), process_.Get()};
    EXPECT_EQ(WaitForMultipleObjects(2, either, FALSE, 20000), static_cast<DWORD>(WAIT_OBJECT_0)) << ToUtf8(path_);
  }
  ~StartedProgram() {
    TerminateProcess(process_.Get(), 1);
    WaitForSingleObject(process_.Get(), 20000);
    DeleteFileW(path_.c_str());
  }
  StartedProgram(const StartedProgram&) = delete;
  StartedProgram& operator=(const StartedProgram&) = delete;

  [[nodiscard]] HWND Window() const { return FindWindowExW(HWND_MESSAGE, nullptr, nullptr, Title().c_str()); }
  // Waits for an end that is to come.
  [[nodiscard]] DWORD ExitCode() const {
    DWORD code = STILL_ACTIVE;
    WaitForSingleObject(process_.Get(), 20000);
    GetExitCodeProcess(process_.Get(), &code);
    return code;
  }
  [[nodiscard]] bool Runs() const { return WaitForSingleObject(process_.Get(), 0) == WAIT_TIMEOUT; }

 private:
  static WideString Number(DWORD number) { return WidenAscii(std::to_string(number)); }
  [[nodiscard]] WideString Title() const { return L"waiting-" + Number(GetProcessId(process_.Get())); }

  WideString path_;
  KernelHandle process_;
};
