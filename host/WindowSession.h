// A command in the installer's window. The window shows the way and asks; it tells the host when to work, and the host
// works then, on the same thread, while the window stands still.
#pragma once

#include <optional>

#include "host/Session.h"

class MorphUI;

class WindowSession {
 public:
  explicit WindowSession(const Session& theSession) : session(theSession) {}
  WindowSession(const WindowSession&) = delete;
  WindowSession& operator=(const WindowSession&) = delete;

  // Opens the panel that belongs to the command, or the failure panel when the machine may not be changed, and runs the
  // window to its end. The exit code is that of the work, where any was done; else HostExit::Left when the user went,
  // HostExit::Conflicts when he gave up waiting for programs to close, and 0 when there was nothing to lose.
  [[nodiscard]] int Run();

 private:
  // Nothing when the panel may open; else why not, which the log holds by then.
  [[nodiscard]] std::optional<HostExit> Refuse(const ChangeLock& lock) const;
  // Whether an update has anything to update; the window does not open where it has not.
  [[nodiscard]] std::optional<HostExit> RefuseUpdate() const;
  void Open(MorphUI& ui);
  // Shows the one panel that does not show its window itself.
  static void ShowMaintenance(MorphUI& ui, const MString& title);
  [[nodiscard]] int ExitCode(int windowCode) const;

  static int32_t Notified(MorphUI* ui, int32_t code, int64_t value, void* context);
  void OnNotified(MorphUI& ui, int32_t code, int64_t value);
  void Install(MorphUI& ui);
  void Remove(MorphUI& ui);
  void Update(MorphUI& ui);
  void ShowFailure(MorphUI& ui) const;
  // What is clicked and typed while the window stands still is not meant for what it shows afterwards.
  static void DropInput();

  const Session& session;
  std::optional<HostExit> outcome;  // of the work, once there was any
  bool left = false;                // the window has told that it ends
};
