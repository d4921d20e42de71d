// Works a dialog as its user would, while the thread that shows it is blocked: waits for it, types, presses.
//
//   DialogDriver user(desktop, [](DialogDriver& driver) { driver.Type(kFileName, L"a.txt"); driver.Press(IDOK); });
//   ... call that shows the dialog ...
//   EXPECT_TRUE(user.Finish());
#pragma once

#include <windows.h>

#include <functional>
#include <thread>

#include "engine/Handles.h"
#include "engine/WideText.h"

class DialogDriver {
 public:
  static constexpr int kFileName = 1152;     // the file dialogs' edit control
  static constexpr int kFileType = 1136;     // their list of filters
  static constexpr DWORD kPatience = 30000;  // milliseconds; far more than anything here needs
  using Act = std::function<void(DialogDriver&)>;

  // Starts to wait for the first visible dialog on the desktop, and then runs `act`, on a thread of its own.
  DialogDriver(HDESK desktop, Act act);
  DialogDriver(const DialogDriver&) = delete;
  DialogDriver& operator=(const DialogDriver&) = delete;
  ~DialogDriver();

  // Ends the wait, if there still is one, and waits for the act. Whether the dialog came and everything was found.
  [[nodiscard]] bool Finish();

  // For the act. What fails is remembered for Finish, and the dialog cancelled, so that its caller comes back.
  void Type(int control, WideView text);  // key by key, over what is there
  void Press(int button);
  // Waits for a second dialog on top of the first; the acts that follow are on that one.
  void AwaitNext();
  [[nodiscard]] HWND Window() const { return window_; }
  // The text of one of its controls.
  [[nodiscard]] WideString TextOf(int control);

 private:
  void Run();
  [[nodiscard]] HWND Control(int id);
  // Looks again and again, until it is so, nobody waits any more or the patience is at its end.
  [[nodiscard]] bool WaitUntil(const std::function<bool()>& isSo) const;

  HDESK desktop_;
  Act act_;
  HWND window_ = nullptr;
  bool failed_ = false;
  KernelHandle stop_;
  std::thread thread_;
};
