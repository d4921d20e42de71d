#include "ui/toolkit/MorphUI.h"

#include <algorithm>
#include <iterator>
#include <new>

#include "engine/DllHelpers.h"
#include "engine/HostCallbacks.h"
#include "ui/toolkit/MWindow.h"

namespace {

template <class Function>
Function* Entry(const LibraryHandle& library, const char* name) {
  if (!library) return nullptr;
  return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(library.Get(), name)));
}

int32_t PumpMessages() {
  MSG message = {};
  while (GetMessageW(&message, nullptr, 0, 0) > 0) {
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
  return static_cast<int32_t>(message.wParam);
}

}  // namespace

MsimgLibrary::MsimgLibrary()
    : library(LoadSystemLibrary(L"Msimg32.dll")), AlphaBlend(Entry<decltype(::AlphaBlend)>(library, "AlphaBlend")) {}

MorphUI::MorphUI(HostCallbacks* owner, HMODULE resources)
    : resourceModule(resources == nullptr ? GetModuleHandleA(nullptr) : resources), host(owner) {}

void MorphUI::SetEventCallback(HostEventCallback function, void* context) noexcept {
  callback = function;
  callbackContext = context;
}

int32_t MorphUI::Notify(int32_t code, int64_t value) noexcept {
  return callback == nullptr ? 0 : callback(this, code, value, callbackContext);
}

void MorphUI::SetWindow(MWindow* shown) noexcept {
  window = shown;
  try {
    window->HandleEvent(WindowEventId, kWindowCreated, 0);
  } catch (const std::bad_alloc&) {
    // The window stays as far as it was built.
  }
}

void MorphUI::PostEvent(uint32_t id, uint32_t message, int64_t param) noexcept {
  if (window == nullptr) return;
  PostMessageW(window->handle, message + kEventMessageBase, id, param);
}

int32_t MorphUI::RunMessageLoop() noexcept {
  constexpr char kLibrary[] = "\\atl.dll";
  char path[MAX_PATH + sizeof(kLibrary)] = {};
  const UINT length = GetSystemDirectoryA(path, MAX_PATH);
  if (length == 0 || length >= MAX_PATH) return 0;
  std::copy(std::begin(kLibrary), std::end(kLibrary), path + length);
  const LibraryHandle atl(LoadLibraryA(path));
  using AtlAxWinInit = BOOL WINAPI();
  auto* const initialise = Entry<AtlAxWinInit>(atl, "AtlAxWinInit");
  if (initialise == nullptr || !initialise()) return static_cast<int32_t>(GetLastError());
  if (window != nullptr) window->platform->Invalidate(window->rect);
  const int32_t code = PumpMessages();
  if (window != nullptr) window->Show(false);
  return code;
}

void MorphUI::GetString(MString* out, uint32_t id) noexcept {
  host->LoadStringFallback(out, id, 1);
}
