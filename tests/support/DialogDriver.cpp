#include "tests/support/DialogDriver.h"

#include <algorithm>
#include <utility>

namespace {

constexpr DWORD kLookAgain = 5;  // milliseconds

struct Search {
  HWND except;
  HWND found = nullptr;
};

BOOL CALLBACK LookAt(HWND window, LPARAM search) {
  auto& wanted = *reinterpret_cast<Search*>(search);
  wchar_t name[32] = {};
  GetClassNameW(window, name, 32);
  if (window == wanted.except || !IsWindowVisible(window) || WideView(name) != L"#32770") return TRUE;
  wanted.found = window;
  return FALSE;
}

// The visible dialog on the desktop, other than `except`; null when there is none.
HWND FindDialog(HDESK desktop, HWND except) {
  Search search = {except};
  EnumDesktopWindows(desktop, LookAt, reinterpret_cast<LPARAM>(&search));
  return search.found;
}

}  // namespace

DialogDriver::DialogDriver(HDESK desktop, Act act)
    : desktop_(desktop), act_(std::move(act)), stop_(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {
  thread_ = std::thread([this] { Run(); });
}

DialogDriver::~DialogDriver() {
  if (thread_.joinable()) (void)Finish();
}

bool DialogDriver::Finish() {
  SetEvent(stop_.Get());
  thread_.join();
  return !failed_;
}

void DialogDriver::Run() {
  SetThreadDesktop(desktop_);
  AwaitNext();
  if (!failed_) act_(*this);
  if (!failed_ || window_ == nullptr) return;
  // Whoever waits for the dialog is to come back, whatever went wrong.
  while (const HWND left = FindDialog(desktop_, nullptr)) {
    PostMessageW(left, WM_COMMAND, IDCANCEL, 0);
    if (!WaitUntil([left] { return !IsWindow(left); })) return;
  }
}

void DialogDriver::AwaitNext() {
  const HWND before = window_;
  failed_ = failed_ || !WaitUntil([&] { return (window_ = FindDialog(desktop_, before)) != nullptr; });
}

void DialogDriver::Type(int control, WideView text) {
  const HWND edit = Control(control);
  if (edit == nullptr) return;
  SendMessageW(edit, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L""));
  for (const wchar_t key : text) SendMessageW(edit, WM_CHAR, key, 1);
  failed_ = failed_ || TextOf(control) != text;
}

void DialogDriver::Press(int button) {
  const HWND control = Control(button);
  // Posted, not sent: what the button does may be to show another dialog.
  if (control != nullptr) PostMessageW(control, BM_CLICK, 0, 0);
}

WideString DialogDriver::TextOf(int control) {
  wchar_t text[1040] = {};
  if (const HWND window = Control(control)) {
    SendMessageW(window, WM_GETTEXT, std::size(text), reinterpret_cast<LPARAM>(text));
  }
  return text;
}

HWND DialogDriver::Control(int id) {
  HWND control = nullptr;
  const auto match = [&](HWND child) {
    if (GetDlgCtrlID(child) == id && IsWindowVisible(child)) control = child;
    return control == nullptr;
  };
  using Match = decltype(match);
  const auto look = [](HWND child, LPARAM matcher) -> BOOL { return (*reinterpret_cast<Match*>(matcher))(child); };
  EnumChildWindows(window_, look, reinterpret_cast<LPARAM>(&match));
  failed_ = failed_ || control == nullptr;
  return control;
}

bool DialogDriver::WaitUntil(const std::function<bool()>& isSo) const {
  const DWORD begin = GetTickCount();
  while (!isSo()) {
    if (GetTickCount() - begin > kPatience || WaitForSingleObject(stop_.Get(), kLookAgain) == WAIT_OBJECT_0) {
      return false;
    }
  }
  return true;
}
