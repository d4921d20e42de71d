// The numbers by which window, panels and host tell one another what happened. Everything that reaches a window is one
// triple: the sender's id, a message and a 64-bit parameter.
#pragma once

#include <cstdint>

// Ids below 5 are reserved; every other id is a control's.
enum EventId : uint32_t {
  TickEventId = 1,     // timer handlers of regions
  WindowEventId = 2,   // the window itself, WindowMessage
  CommandEventId = 3,  // the host
  FailureEventId = 4,  // the host
};

enum WindowMessage : uint32_t {
  kWindowClosing = 0,
  kWindowCreated = 1,  // also: a panel is shown
  kWindowResized = 2,
  kWindowHidden = 3,
  kWindowFrame = 4,  // every tick of the timer
};

// What a control posts with its control id. Panels act on the click alone.
enum ControlMessage : uint32_t {
  kPointerEntered = 0,
  kPointerLeft = 1,
  kClicked = 2,
  kPressed = 3,
  kReleasedOutside = 4,
};

// What the host is told through MorphUI::Notify.
enum HostEvent : int32_t {
  kInstallerExits = 0,  // value: the exit code
  kInstallStep = 2,
  kUninstallStep = 3,
  kUpdateStep = 4,
  kQueryProductMask = 6,  // value: address of a uint32_t that the host fills
};

// The exit code of a window that was closed by its user.
constexpr int32_t kExitClosedByUser = 1039;

// The messages that region handlers are called with: the platform's own numbers, so that a window procedure passes its
// message on as it is.
enum RegionMessage : uint32_t {
  kTimerTick = 275,
  kMouseMove = 512,
  kMousePress = 513,
  kMouseRelease = 514,
};

// Posted events travel as platform messages from this number on: message + base, id in wParam, parameter in lParam.
constexpr uint32_t kEventMessageBase = 1024;
constexpr uint32_t kEventMessageEnd = 49151;
// The period of a window's timer.
constexpr uint32_t kTickMilliseconds = 16;
