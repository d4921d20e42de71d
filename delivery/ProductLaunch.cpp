#include "delivery/ProductLaunch.h"

#include "delivery/ProductDigest.h"
#include "delivery/ProductName.h"

namespace {

constexpr DWORD kElevationRequired = 740;  // the toolchain has no name for it

// Starts by whichever function there is. The platform may write into the command line, so it gets a copy.
template <class Text, class Startup, class Function>
bool Start(Function* createProcess, const Text& path, Text parameters, bool hasParameters,
           PROCESS_INFORMATION& started) {
  Startup startup = {};
  static_assert(sizeof(startup) == 104);
  startup.cb = sizeof(startup);
  return createProcess(path.c_str(), hasParameters ? parameters.data() : nullptr, nullptr, nullptr, FALSE, 0, nullptr,
                       nullptr, &startup, &started);
}

bool StartProcess(const Kernel32DllHelper& kernel32, const WideString& path, const wchar_t* parameters,
                  PROCESS_INFORMATION& started) {
  const bool hasParameters = parameters != nullptr;
  const WideString text = hasParameters ? parameters : L"";
  if (kernel32.CreateProcessW != nullptr) {
    return Start<WideString, STARTUPINFOW>(kernel32.CreateProcessW, path, text, hasParameters, started);
  }
  return Start<std::string, STARTUPINFOA>(&CreateProcessA, NarrowToCodePage(path), NarrowToCodePage(text),
                                          hasParameters, started);
}

// The shell asks the user. The product's parameters are not passed on this way; products that need elevation know it.
bool StartElevated(const Shell32DllHelper& shell32, const WideString& path) {
  SHELLEXECUTEINFOW execute = {};
  static_assert(sizeof(execute) == 112);
  execute.cbSize = sizeof(execute);
  execute.hwnd = GetForegroundWindow();
  execute.lpVerb = L"open";
  execute.lpFile = path.c_str();
  execute.nShow = SW_SHOWNORMAL;
  return shell32.ShellExecuteExW(&execute);
}

}  // namespace

bool LaunchProduct(const wchar_t* name, const wchar_t* parameters, const wchar_t* overridePath,
                   const Kernel32DllHelper& kernel32, const Shell32DllHelper& shell32) {
  if (!IsValidProductName(name)) return false;
  const std::optional<WideString> path = ProductExecutablePath(name, ProductFolder::PerUser);
  if (!path || !VerifyProductDigest(name, overridePath, ProductFolder::PerUser)) return false;

  PROCESS_INFORMATION started = {};
  if (StartProcess(kernel32, *path, parameters, started)) {
    const KernelHandle process(started.hProcess);
    const KernelHandle thread(started.hThread);
    WaitForInputIdle(process.Get(), INFINITE);
    return true;
  }
  if (GetLastError() != kElevationRequired || shell32.ShellExecuteExW == nullptr) return false;
  return StartElevated(shell32, *path);
}
