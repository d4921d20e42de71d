// Works a dialog as its user would, while the thread that shows it is blocked: waits for it, types, presses.
//
//   DialogDriver user(desktop, [](DialogDriver& driver) { driver.Type(L"a.txt"); driver.Press(IDOK); });
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
  using Act = std::function<void(DialogDriver&)>;

  // Starts to wait for the first visible dialog on the desktop, and then runs `act`, on a thread of its own.
  DialogDriver(HDESK desktop, Act act);
  DialogDriver(const DialogDriver&) = delete;
  DialogDriver& operator=(const DialogDriver&) = delete;
  ~DialogDriver();

  // Ends the wait, if there still is one, and waits for the act. Whether the dialog came and everything was found.
  [[nodiscard]] bool Finish();

  // For the act. What fails is remembered for Finish, and the dialog cancelled, so that its caller comes back.
  void Type(WideView name);  // key by key, over what the file dialogs offer
  void Press(int button);
  [[nodiscard]] WideString FileName();

 private:
  void Run(const Act& act);
  [[nodiscard]] HWND Control(int id);

  HDESK desktop_;
  HWND window_ = nullptr;
  bool failed_ = false;
  KernelHandle stop_;
  std::thread thread_;
};
