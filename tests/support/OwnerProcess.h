// A window of another program, which lies where the test puts it.
#pragma once

#include <windows.h>

#include <string>

#include "engine/Handles.h"
#include "tests/support/BrokerProcess.h"
#include "tests/support/StartProcess.h"
#include "tests/support/TestFiles.h"

class OwnerProcess {
 public:
  // Copies WindowOwner.exe to `image`, making its folder, and runs it there.
  explicit OwnerProcess(WideString image) : image_(std::move(image)) {
    static int count = 0;
    const WideString name =
        WidenAscii("LumenOwner" + std::to_string(GetCurrentProcessId()) + "n" + std::to_string(++count));
    testing_files::MakeDirectories(image_.substr(0, image_.rfind(L'\\')));
    CopyFileW((broker_process::BuildFolder() + L"\\tests\\WindowOwner.exe").c_str(), image_.c_str(), FALSE);
    const KernelHandle ready(CreateEventW(nullptr, TRUE, FALSE, (name + L"ready").c_str()));
    go_.Reset(CreateEventW(nullptr, TRUE, FALSE, (name + L"go").c_str()));
    process_ = StartProcess(L"\"" + image_ + L"\" " + name);
    if (!process_) return;
    const HANDLE either[] = {ready.Get(), process_.Get()};
    if (WaitForMultipleObjects(2, either, FALSE, broker_process::kPatience) == WAIT_OBJECT_0) {
      window_ = FindWindowW(L"Static", name.c_str());
    }
  }
  OwnerProcess(const OwnerProcess&) = delete;
  OwnerProcess& operator=(const OwnerProcess&) = delete;
  ~OwnerProcess() {
    End();
    DeleteFileW(image_.c_str());
    RemoveDirectoryW(image_.substr(0, image_.rfind(L'\\')).c_str());  // unless it was there before and holds more
  }

  // Null when the program could not be started.
  [[nodiscard]] HWND Window() const { return window_; }
  // As clients send it.
  [[nodiscard]] ULONG Value() const { return static_cast<ULONG>(reinterpret_cast<uintptr_t>(window_)); }
  // Closes the window with its program.
  void End() {
    SetEvent(go_.Get());
    WaitForSingleObject(process_.Get(), broker_process::kPatience);
  }

 private:
  WideString image_;
  KernelHandle process_;
  KernelHandle go_;
  HWND window_ = nullptr;
};
