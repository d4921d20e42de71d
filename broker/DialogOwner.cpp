#include "broker/DialogOwner.h"

#include <vector>

#include "broker/TrustedPrograms.h"
#include "engine/DllHelpers.h"
#include "engine/Handles.h"
#include "engine/SystemPaths.h"

bool IsDialogOwnerAllowed(HWND window) {
  DWORD processId = 0;
  if (window == nullptr || !IsWindow(window) || GetWindowThreadProcessId(window, &processId) == 0) return false;
  const KernelHandle process(OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, processId));
  const auto askImage = Kernel32().QueryFullProcessImageNameW;
  wchar_t image[1040] = {};
  DWORD length = static_cast<DWORD>(std::size(image));
  if (!process || askImage == nullptr || !askImage(process.Get(), 0, image, &length)) return false;
  std::vector<WideString> roots;
  for (const ShellFolder folder : {ShellFolder::ProgramFiles, ShellFolder::ProgramFilesX86}) {
    if (auto root = FolderPath(folder)) roots.push_back(std::move(*root));
  }
  return IsTrustedProgram(WideView(image, length), roots);
}
