#include "ui/toolkit/WindowProcedures.h"

#include <new>

#include "ui/toolkit/MWindow.h"
#include "ui/toolkit/Win32WindowPlatform.h"

namespace {

MWindow* WindowOf(HWND window) {
  return reinterpret_cast<MWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
}

Win32WindowPlatform& PlatformOf(const MWindow& window) {
  return static_cast<Win32WindowPlatform&>(*window.platform);
}

bool ShiftIsDown() {
  return GetKeyState(VK_SHIFT) < 0;
}

// Coordinates count as unsigned, so a captured pointer left of the window is far to its right: outside all the same.
Point PointOf(LPARAM lParam) {
  return {LOWORD(lParam), HIWORD(lParam)};
}

// What needs the window object. False: the system's own handling follows.
bool HandleForWindow(MWindow& window, HWND handle, UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
  result = 0;
  switch (message) {
    case WM_PAINT: PlatformOf(window).Paint(); return true;
    case WM_KILLFOCUS: window.SetCursorKind(CursorKind::Arrow); return false;
    case WM_CLOSE:
      window.HandleEvent(WindowEventId, kWindowClosing, 0);
      window.ExitInstaller(kExitClosedByUser);
      result = 1;
      return true;
    case WM_KEYDOWN:
      if (wParam != VK_TAB) return false;
      // While no control has the keyboard, Shift is what makes Tab go forward; from a control it is the other way
      // round.
      window.SetFocusRegion(window.NextFocus(GetWindow(handle, GW_CHILD), ShiftIsDown()), true);
      return true;
    case WM_TIMER:
      window.Tick();
      result = 1;
      return true;
    case WM_MOUSEMOVE:
    case WM_LBUTTONDOWN:
    case WM_LBUTTONUP: window.DispatchMouse(message, PointOf(lParam)); return true;
    default:
      if (message >= kEventMessageBase && message <= kEventMessageEnd) {
        window.HandleEvent(static_cast<uint32_t>(wParam), message - kEventMessageBase, lParam);
      }
      return false;
  }
}

LRESULT HandleTopLevel(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_CREATE:
      SetWindowLongPtrW(window, GWLP_USERDATA,
                        reinterpret_cast<LONG_PTR>(reinterpret_cast<CREATESTRUCTW*>(lParam)->lpCreateParams));
      return 0;
    case WM_DESTROY: PostQuitMessage(0); return 0;
    case WM_ACTIVATE: return 0;
    case WM_DRAWITEM: return 1;
    case WM_GETDLGCODE: return DLGC_WANTTAB;
    case WM_KEYUP: OutputDebugStringA("window key up\n"); break;
    case WM_CLOSE:
      if (WindowOf(window) == nullptr) return 1;
      break;
    default: break;
  }
  // Until the platform's constructor is done there is a window object but nothing that could draw.
  MWindow* const object = WindowOf(window);
  LRESULT result = 0;
  if (object != nullptr && object->platform != nullptr &&
      HandleForWindow(*object, window, message, wParam, lParam, result)) {
    return result;
  }
  return DefWindowProcW(window, message, wParam, lParam);
}

// The messages of a child as its window sees them: the same, at the place where they happened.
LRESULT PassMouse(HWND child, UINT message, WPARAM wParam, POINT at) {
  const HWND parent = GetParent(child);
  MapWindowPoints(child, parent, &at, 1);
  return TopLevelProcedure(parent, message, wParam, MAKELPARAM(at.x, at.y));
}

// Enter and Space are the mouse button, a little inside the control's corner.
LRESULT HandleKey(HWND child, UINT message, WPARAM wParam, LPARAM lParam) {
  constexpr POINT kKeyPoint = {2, 2};
  const HWND parent = GetParent(child);
  const bool down = message == WM_KEYDOWN;
  switch (wParam) {
    case VK_TAB:
      if (MWindow* const window = WindowOf(parent); window != nullptr && down) {
        window->SetFocusRegion(window->NextFocus(child, !ShiftIsDown()), true);
      }
      return 0;
    case VK_RETURN:
    case VK_SPACE:
      return down ? PassMouse(child, WM_LBUTTONDOWN, MK_LBUTTON, kKeyPoint)
                  : PassMouse(child, WM_LBUTTONUP, 0, kKeyPoint);
    default: return TopLevelProcedure(parent, message, wParam, lParam);
  }
}

LRESULT AnswerObject(HWND child, WPARAM wParam, LPARAM lParam) {
  auto* const proxy = static_cast<MAccProxyObject*>(GetPropW(child, kProxyProperty));
  if (proxy == nullptr) return DefWindowProcW(child, WM_GETOBJECT, wParam, lParam);
  return AnswerGetObject(proxy, wParam);
}

LRESULT HandleChild(HWND child, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message >= kEventMessageBase) return TopLevelProcedure(GetParent(child), message, wParam, lParam);
  switch (message) {
    case WM_GETOBJECT: return AnswerObject(child, wParam, lParam);
    case WM_GETDLGCODE: return DLGC_WANTTAB;
    case WM_KEYDOWN:
    case WM_KEYUP: return HandleKey(child, message, wParam, lParam);
    case WM_MOUSEMOVE:
    case WM_LBUTTONDOWN:
    case WM_LBUTTONUP: return PassMouse(child, message, wParam, {LOWORD(lParam), HIWORD(lParam)});
    default: return DefWindowProcW(child, message, wParam, lParam);
  }
}

}  // namespace

LRESULT CALLBACK TopLevelProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  try {
    return HandleTopLevel(window, message, wParam, lParam);
  } catch (const std::bad_alloc&) {
    return 0;  // the message is lost, the window lives on
  }
}

LRESULT CALLBACK ChildProcedure(HWND child, UINT message, WPARAM wParam, LPARAM lParam) {
  try {
    return HandleChild(child, message, wParam, lParam);
  } catch (const std::bad_alloc&) {
    return 0;
  }
}
