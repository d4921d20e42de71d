// A tooltip over a control, the window system's own, shown while it is active. It draws nothing itself.
#pragma once

// clang-format off
#include <windows.h>
// clang-format on
#include <commctrl.h>

#include <memory>

#include "engine/MString.h"
#include "ui/toolkit/MRegion.h"

class MTooltipArea final : public MSkinnedSection {
 public:
  // Covers `control`, a native child of `ownerWindow`, within this region's bounds, which are relative to the control.
  MTooltipArea(MWindow* inWindow, HWND ownerWindow, HWND control, HMODULE module);
  ~MTooltipArea() override;
  // While active, moves the tip to where the bounds are now.
  void Layout() override;

  MWindow* window;
  MString text;
  HWND tooltipHandle = nullptr;
  std::unique_ptr<TOOLINFOW> toolInfo;
  bool active = false;

  void SetText(const MString& newText);
  void SetActive(bool on);

 private:
  void Send(UINT message);
};
