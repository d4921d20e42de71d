#include "tests/support/DialogDriver.h"

#include <utility>

namespace {

constexpr int kFileName = 1152;     // the file dialogs' edit control
constexpr DWORD kPatience = 30000;  // milliseconds; far more than anything here needs
constexpr DWORD kLookAgain = 5;

// For EnumDesktopWindows: puts the visible dialog into the window at `found`.
BOOL CALLBACK LookAt(HWND window, LPARAM found) {
  wchar_t name[32] = {};
  GetClassNameW(window, name, 32);
  if (!IsWindowVisible(window) || WideView(name) != L"#32770") return TRUE;
  *reinterpret_cast<HWND*>(found) = window;
  return FALSE;
}

}  // namespace

DialogDriver::DialogDriver(HDESK desktop, Act act)
    : desktop_(desktop), stop_(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {
  thread_ = std::thread([this, act = std::move(act)] { Run(act); });
}

DialogDriver::~DialogDriver() {
  if (thread_.joinable()) (void)Finish();
}

bool DialogDriver::Finish() {
  SetEvent(stop_.Get());
  thread_.join();
  return !failed_;
}

void DialogDriver::Run(const Act& act) {
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

void DialogDriver::Type(WideView name) {
  const HWND edit = Control(kFileName);
  if (edit == nullptr) return;
  SendMessageW(edit, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L""));
  for (const wchar_t key : name) SendMessageW(edit, WM_CHAR, key, 1);
  failed_ = failed_ || FileName() != name;
}

void DialogDriver::Press(int button) {
  // Posted, not sent: what the button does may be to show another dialog.
  if (const HWND control = Control(button)) PostMessageW(control, BM_CLICK, 0, 0);
}

WideString DialogDriver::FileName() {
  wchar_t text[1040] = {};
  if (const HWND edit = Control(kFileName)) {
    SendMessageW(edit, WM_GETTEXT, std::size(text), reinterpret_cast<LPARAM>(text));
  }
  return text;
}

HWND DialogDriver::Control(int id) {
  const HWND control = GetDlgItem(window_, id);
  failed_ = failed_ || !IsWindowVisible(control);
  return failed_ ? nullptr : control;
}
