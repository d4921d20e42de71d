// Works a dialog as its user would, while the thread that shows it is blocked: waits for it, types, presses.
//
//   DialogDriver user(desktop, [](DialogDriver& driver) { driver.Type(L"a.txt"); driver.Press(IDOK); });
//   ... call that shows the dialog ...
//   EXPECT_TRUE(user.Finish());
#pragma once

#include <windows.h>

#include <functional>
#include <thread>
#include <utility>

#include "engine/Handles.h"
#include "engine/WideText.h"

class DialogDriver {
 public:
  using Act = std::function<void(DialogDriver&)>;

  // Starts to wait for the first visible dialog on the desktop, and then runs `act`, on a thread of its own.
  DialogDriver(HDESK desktop, Act act) : desktop_(desktop), thread_([this, act = std::move(act)] { Run(act); }) {}
  DialogDriver(const DialogDriver&) = delete;
  DialogDriver& operator=(const DialogDriver&) = delete;
  ~DialogDriver() {
    if (thread_.joinable()) (void)Finish();
  }

  // Ends the wait, if there still is one, and waits for the act. Whether the dialog came and everything was found.
  [[nodiscard]] bool Finish() {
    SetEvent(stop_.Get());
    thread_.join();
    return !failed_;
  }

  // For the act. What fails is remembered for Finish, and the dialog cancelled, so that its caller comes back.
  // Types key by key, over what the file dialogs offer.
  void Type(WideView name) {
    const HWND edit = Control(kFileName);
    SendMessageW(edit, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L""));
    for (const wchar_t key : name) SendMessageW(edit, WM_CHAR, key, 1);
    failed_ = failed_ || FileName() != name;
  }
  // Posted, not sent: what the button does may be to show another dialog.
  void Press(int button) { PostMessageW(Control(button), BM_CLICK, 0, 0); }
  [[nodiscard]] WideString FileName() {
    wchar_t text[1040] = {};
    SendMessageW(Control(kFileName), WM_GETTEXT, std::size(text), reinterpret_cast<LPARAM>(text));
    return text;
  }

 private:
  static constexpr int kFileName = 1152;     // the file dialogs' edit control
  static constexpr DWORD kPatience = 30000;  // milliseconds; far more than anything here needs
  static constexpr DWORD kLookAgain = 5;

  // For EnumDesktopWindows: puts the visible dialog into the window at `found`.
  static BOOL CALLBACK LookAt(HWND window, LPARAM found) {
    wchar_t name[32] = {};
    GetClassNameW(window, name, 32);
    if (!IsWindowVisible(window) || WideView(name) != L"#32770") return TRUE;
    *reinterpret_cast<HWND*>(found) = window;
    return FALSE;
  }
  void Run(const Act& act) {
    SetThreadDesktop(desktop_);
    for (const DWORD begin = GetTickCount(); window_ == nullptr && !failed_;) {
      EnumDesktopWindows(desktop_, LookAt, reinterpret_cast<LPARAM>(&window_));
      failed_ = window_ == nullptr &&
                (GetTickCount() - begin > kPatience || WaitForSingleObject(stop_.Get(), kLookAgain) == WAIT_OBJECT_0);
    }
    if (!failed_) act(*this);
    // Whoever waits for the dialog is to come back, whatever went wrong.
    if (failed_ && window_ != nullptr) PostMessageW(window_, WM_COMMAND, IDCANCEL, 0);
  }
  // Null when it is not shown.
  [[nodiscard]] HWND Control(int id) {
    const HWND control = GetDlgItem(window_, id);
    failed_ = failed_ || !IsWindowVisible(control);
    return failed_ ? nullptr : control;
  }

  HDESK desktop_;
  HWND window_ = nullptr;
  bool failed_ = false;
  KernelHandle stop_{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
  std::thread thread_;  // last: it uses all of the above
};
