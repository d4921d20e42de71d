#include "ui/toolkit/Win32WindowPlatform.h"

#include <algorithm>

#include "engine/DllHelpers.h"
#include "engine/HostCallbacks.h"
#include "engine/LumenBrokerShim.h"
#include "ui/toolkit/GdiSurface.h"
#include "ui/toolkit/MWindow.h"
#include "ui/toolkit/MorphUI.h"
#include "ui/toolkit/WindowProcedures.h"

namespace {

constexpr wchar_t kClassName[] = L"CorvaLumenPlayerInstaller";
constexpr DWORD kFrameStyle = WS_CAPTION | WS_SYSMENU;
constexpr DWORD kFrameStyleWithMinimize = kFrameStyle | WS_MINIMIZEBOX;
constexpr DWORD kChildStyle = WS_CHILD | WS_VISIBLE | WS_TABSTOP | BS_OWNERDRAW;
static_assert(kFrameStyle == 13107200 && kFrameStyleWithMinimize == 13238272 && kChildStyle == 1342242827);
constexpr int32_t kFirstSize = 100;

// By their numbers: the headers' names are narrow.
const wchar_t* const kArrowCursor = MAKEINTRESOURCEW(32512);
const wchar_t* const kHandCursor = MAKEINTRESOURCEW(32649);

ATOM RegisterWindowClass(HMODULE module) {
  WNDCLASSEXW type = {};
  type.cbSize = sizeof(type);
  type.style = CS_HREDRAW | CS_VREDRAW;
  type.lpfnWndProc = TopLevelProcedure;
  type.hInstance = module;
  type.hCursor = LoadCursorW(nullptr, kArrowCursor);
  type.lpszClassName = kClassName;
  return RegisterClassExW(&type);
}

// Found in the system's own library, past whatever has been put in the place of this module's import.
HWND CreateFrame(MWindow* window, const MorphUI& ui) {
  static BoundFunction<decltype(::CreateWindowExW)> create(L"user32.dll", "CreateWindowExW");
  auto* const createWindow = create.Get();
  if (createWindow == nullptr) return nullptr;
  const DWORD style = ui.callback == nullptr ? kFrameStyle : kFrameStyleWithMinimize;
  return createWindow(WS_EX_DLGMODALFRAME, kClassName, L"", style, CW_USEDEFAULT, CW_USEDEFAULT, kFirstSize, kFirstSize,
                      nullptr, nullptr, ui.resourceModule, window);
}

}  // namespace

MWindow::MWindow(MorphUI* ui) : morph(ui) {
  rect = {CW_USEDEFAULT, CW_USEDEFAULT, kFirstSize, kFirstSize};
  platform = std::make_unique<Win32WindowPlatform>(this, ui);
  if (handle == nullptr) return;
  ApplyRect(false, false);
  SetTimer(handle, 0, kTickMilliseconds, nullptr);
}

Win32WindowPlatform::Win32WindowPlatform(MWindow* forWindow, MorphUI* ui)
    : window(forWindow), morph(ui), proxyProperty(GlobalAddAtomW(kProxyProperty)) {
  window->classAtom = RegisterWindowClass(ui->resourceModule);
  handle = CreateFrame(window, *ui);
  window->handle = handle;
  if (handle == nullptr) return;
  SetForegroundWindow(handle);
  SetWindowPos(handle, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
  if (back.Create(WindowDc(handle).Get())) window->backDC = back.Get();
}

Win32WindowPlatform::~Win32WindowPlatform() {
  if (handle != nullptr) {
    // Its own procedure would post a quit message, which would end the next loop of this thread.
    SetWindowLongPtrW(handle, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&DefWindowProcW));
    SetWindowLongPtrW(handle, GWLP_USERDATA, 0);
    DestroyWindow(handle);
  }
  UnregisterClassW(kClassName, morph->resourceModule);  // stays while another window of the class is there
  GlobalDeleteAtom(proxyProperty);
}

void Win32WindowPlatform::Invalidate(const Rect& rect) {
  if (handle == nullptr) return;  // which would stand for every window there is
  const RECT area = {rect.left, rect.top, rect.right, rect.bottom};
  InvalidateRect(handle, &area, FALSE);
}

void Win32WindowPlatform::Post(uint32_t id, uint32_t message, int64_t param) {
  PostMessageW(handle, message + kEventMessageBase, id, param);
}

void Win32WindowPlatform::Resize(int32_t width, int32_t height) {
  RECT client = {};
  RECT frame = {};
  GetClientRect(handle, &client);
  GetWindowRect(handle, &frame);
  // The move repaints at once, so the buffer grows first.
  EnsureBackBuffer(width, height);
  MoveWindow(handle, frame.left, frame.top, width + (frame.right - frame.left) - client.right,
             height + (frame.bottom - frame.top) - client.bottom, TRUE);
  // The system may have given more than was asked for.
  GetClientRect(handle, &client);
  EnsureBackBuffer(client.right, client.bottom);
}

void Win32WindowPlatform::SetTitle(const MString& title) {
  SetWindowTextW(handle, title.IsEmpty() ? L"" : title.Data());
}

void Win32WindowPlatform::Show(bool on) {
  ShowWindow(handle, on ? SW_SHOW : SW_HIDE);
}

void Win32WindowPlatform::SetCursorShape(CursorKind kind) {
  ::SetCursor(LoadCursorW(nullptr, kind == CursorKind::Hand ? kHandCursor : kArrowCursor));
}

void Win32WindowPlatform::SetCapture(bool on) {
  on ? (void)::SetCapture(handle) : (void)::ReleaseCapture();
}

void Win32WindowPlatform::CreateChild(MRegion& region, const Rect& place) {
  if (handle == nullptr) return;
  const HWND child =
      CreateWindowExW(0, L"BUTTON", region.label.IsEmpty() ? L"" : region.label.Data(), kChildStyle, place.left,
                      place.top, place.Width(), place.Height(), handle,
                      reinterpret_cast<HMENU>(static_cast<intptr_t>(region.controlId)), morph->resourceModule, nullptr);
  if (child == nullptr) return;
  region.nativeWindow = child;
  region.accProxy = MakeAccProxy(&region);
  SetPropW(child, MAKEINTRESOURCEW(proxyProperty), region.accProxy.get());
  SetWindowLongPtrW(child, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(&region));
  SetWindowLongPtrW(child, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&ChildProcedure));
  if (!region.visible) ShowWindow(child, SW_HIDE);
}

void Win32WindowPlatform::DestroyChild(WindowHandle child) {
  SetWindowLongPtrW(child, GWLP_USERDATA, 0);
  RemovePropW(child, MAKEINTRESOURCEW(proxyProperty));
  DestroyWindow(child);
}

void Win32WindowPlatform::MoveChild(WindowHandle child, const Rect& place) {
  MoveWindow(child, place.left, place.top, place.Width(), place.Height(), FALSE);
}

void Win32WindowPlatform::ShowChild(WindowHandle child, bool on) {
  ShowWindow(child, on ? SW_SHOW : SW_HIDE);
}

bool Win32WindowPlatform::HoldsFocus(WindowHandle child) {
  return GetFocus() == child;
}

void Win32WindowPlatform::SetFocus(WindowHandle child) {
  ::SetFocus(child == nullptr ? handle : child);
}

WindowHandle Win32WindowPlatform::Sibling(WindowHandle child, ChildStep step) {
  constexpr UINT kCommands[] = {GW_HWNDNEXT, GW_HWNDPREV, GW_HWNDFIRST, GW_HWNDLAST};
  return GetWindow(child, kCommands[static_cast<size_t>(step)]);
}

MRegion* Win32WindowPlatform::RegionOf(WindowHandle child) {
  return reinterpret_cast<MRegion*>(GetWindowLongPtrW(child, GWLP_USERDATA));
}

int32_t Win32WindowPlatform::Notify(int32_t code, int64_t value) {
  return morph->Notify(code, value);
}

void Win32WindowPlatform::Quit(int32_t code) {
  PostQuitMessage(code);
}

void Win32WindowPlatform::OpenUrl(const MString& url) {
  if (morph->host != nullptr && morph->host->shim != nullptr) (void)morph->host->shim->OpenUrl(handle, url);
}

void Win32WindowPlatform::OpenSettingsApplet() {
  if (morph->host != nullptr && morph->host->shim != nullptr) (void)morph->host->shim->OpenControlPanelApplet();
}

void Win32WindowPlatform::Paint() {
  PAINTSTRUCT paint = {};
  BeginPaint(handle, &paint);
  const RECT& area = paint.rcPaint;
  if (area.right != 0 && area.bottom != 0) {
    const WindowDc screen(handle);
    GdiSurface surface(back.Get(), morph->msimg);
    window->Draw({area.left, area.top, area.right, area.bottom}, surface);
    BitBlt(screen.Get(), area.left, area.top, area.right - area.left, area.bottom - area.top, back.Get(), 0, 0,
           SRCCOPY);
  }
  EndPaint(handle, &paint);
}

void Win32WindowPlatform::EnsureBackBuffer(int32_t width, int32_t height) {
  if (handle == nullptr || (width == backWidth && height == backHeight)) return;
  const HBITMAP buffer = CreateCompatibleBitmap(WindowDc(handle).Get(), std::max(width, 1), std::max(height, 1));
  if (buffer == nullptr) return;
  back.Select(buffer);
  backWidth = width;
  backHeight = height;
}
