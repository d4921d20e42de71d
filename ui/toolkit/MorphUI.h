// The host's handle on the user interface. The shim makes one, with a window on it, and gives it to the host.
// The six operations are the contract between module and host, in this order.
#pragma once

#include <windows.h>

#include <cstdint>

#include "engine/Handles.h"
#include "engine/MString.h"

class HostCallbacks;
class MorphUI;
class MWindow;

// How the host is told of milestones: HostEvent code and value. Called on the window's thread, which waits for it; the
// host does its work here. The result goes back to the one who notified.
using HostEventCallback = int32_t (*)(MorphUI* ui, int32_t code, int64_t value, void* context);

// The blending library. Without it regions that blend draw nothing.
struct MsimgLibrary {
  MsimgLibrary();
  LibraryHandle library;
  decltype(::AlphaBlend)* AlphaBlend = nullptr;
};

class MorphUI {
 public:
  // A null `resources` means the running executable.
  MorphUI(HostCallbacks* owner, HMODULE resources);
  ~MorphUI() = default;
  MorphUI(const MorphUI&) = delete;
  MorphUI& operator=(const MorphUI&) = delete;

  virtual void SetEventCallback(HostEventCallback function, void* context) noexcept;
  // What the callback answers; 0 without one.
  virtual int32_t Notify(int32_t code, int64_t value) noexcept;
  // Takes the window that is to be shown, not its ownership, and has it build its content.
  virtual void SetWindow(MWindow* shown) noexcept;
  // Queues an event for the window. Any thread.
  virtual void PostEvent(uint32_t id, uint32_t message, int64_t param) noexcept;
  // Runs the window until its exit code is posted, hides it and returns the code. Without the system's control hosting
  // library the platform's error at once, and 0 without a system folder.
  virtual int32_t RunMessageLoop() noexcept;
  // Fills `out` with a text of the module's language tables or, if they lack it, of the host's.
  virtual void GetString(MString* out, uint32_t id) noexcept;

  MsimgLibrary msimg;
  HMODULE resourceModule;
  HostCallbacks* host;
  MWindow* window = nullptr;
  HostEventCallback callback = nullptr;
  void* callbackContext = nullptr;
};
