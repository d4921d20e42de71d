// The update service and the feedback service remove themselves and change their mode when their executables are
// started with a switch. This runs them, judges the outcome and decides when they go. Host's thread; each call may wait
// for a child for up to ten minutes. Failures are in the result and in reports to the host.
#pragma once

#include <cstdint>

#include "engine/MString.h"
#include "removal/ServiceRunner.h"

// What SetUpdateMode makes of the update service.
enum class UpdateMode : uint32_t {
  SilentAutoUpdate = 0,
  ReplaceByNotify = 1,   // uninstalls the service first
  ReplaceByDisable = 2,  // likewise
  Notify = 3,
  Disable = 4,
};

// Starts the runner's executable with one switch, without a window, and waits for its end. True when its exit code was
// 0. A start that fails is reported as 1118. A child that outlasts the wait counts as failed and is left alone.
[[nodiscard]] bool RunServiceCommand(const ServiceRunner& runner, const wchar_t* commandSwitch);
[[nodiscard]] bool RunUninstallCommand(const ServiceRunner& runner);
[[nodiscard]] bool RunAnalyticsCommand(const ServiceRunner& runner);

// Runs the switches of `mode`, then, except for ReplaceByDisable, refreshes the notifier task when the PPAPI kind is
// selected. A number that is no
// UpdateMode is reported as 1118 and false.
[[nodiscard]] bool SetUpdateMode(const ServiceRunner& runner, uint32_t mode);

// The feedback step: ends and deletes the feedback service unless a player that needs it is still installed; where
// there is no such service, asks the update service for analytics instead. False when the file could not be deleted.
// The caller reports 1738.
[[nodiscard]] bool RemoveFeedbackService(HostCallbacks* host, const MString& feedbackPath, const MString& updatePath);

// The update service removal: asks the service to uninstall itself and deletes its file, unless a release player
// remains. With `setNotify` it is set to notify first, and when that fails it is not asked a second time; the file goes
// all the same. The caller reports 1100.
[[nodiscard]] bool RemoveUpdateServiceFile(HostCallbacks* host, const MString& updatePath, bool setNotify);
