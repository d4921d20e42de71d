// An add-on product as a vendor would make one: holds its mutex while it runs, and a message loop. Writes its command
// line to seen.txt beside itself, and does what the tests ask by named events.
#include <windows.h>

#include <string>

#include "engine/Handles.h"
#include "engine/WideText.h"

namespace {

constexpr DWORD kPatience = 30000;

void WriteCommandLine() {
  wchar_t own[1040] = {};
  const DWORD length = GetModuleFileNameW(nullptr, own, 1040);
  const WideString path = WideString(own, length);
  const FileHandle file(CreateFileW((path.substr(0, path.find_last_of(L'\\')) + L"\\seen.txt").c_str(), GENERIC_WRITE,
                                    FILE_SHARE_READ, nullptr, CREATE_ALWAYS, 0, nullptr));
  const std::string text = ToUtf8(GetCommandLineW());
  DWORD written = 0;
  WriteFile(file.Get(), text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
}

}  // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR, int) {
  const KernelHandle mutex(CreateMutexA(nullptr, FALSE, "HalcyonicsMutexGammademoaddon"));
  WriteCommandLine();
  // A test that wants to see it before it is idle holds it here.
  const KernelHandle started(OpenEventA(EVENT_MODIFY_STATE, FALSE, "LumenDemoAddOnStarted"));
  const KernelHandle go(OpenEventA(SYNCHRONIZE, FALSE, "LumenDemoAddOnGo"));
  if (started) SetEvent(started.Get());
  if (go) WaitForSingleObject(go.Get(), kPatience);

  const KernelHandle stop(CreateEventA(nullptr, TRUE, FALSE, "LumenDemoAddOnStop"));
  const HANDLE waited = stop.Get();
  for (MSG message;;) {
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
    if (MsgWaitForMultipleObjects(1, &waited, FALSE, kPatience, QS_ALLINPUT) != WAIT_OBJECT_0 + 1) return 0;
  }
}
