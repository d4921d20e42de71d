#include "removal/RunningProcesses.h"

#include <psapi.h>

#include <algorithm>
#include <array>
#include <iterator>

#include "engine/DllHelpers.h"
#include "engine/Handles.h"

namespace {

constexpr DWORD kReadRights = PROCESS_QUERY_INFORMATION | PROCESS_VM_READ;
static_assert(kReadRights == 0x410);
constexpr size_t kMostModules = 1024;

MString ModulePath(HANDLE process, HMODULE module) {
  wchar_t path[MAX_PATH] = {};
  const DWORD length = K32GetModuleFileNameExW(process, module, path, MAX_PATH);
  return MString(WideView(path, std::min<size_t>(length, MAX_PATH - 1)));
}

// Without its modules, as across processor widths, a process still tells where its image is.
ProcessIdentity IdentityByImage(HANDLE process) {
  ProcessIdentity identity{MString(L""), MString(L"")};
  const auto askImage = Kernel32().QueryFullProcessImageNameW;
  wchar_t path[MAX_PATH] = {};
  DWORD length = MAX_PATH;
  if (askImage == nullptr || !askImage(process, 0, path, &length)) return identity;
  identity.path = MString(WideView(path, length));
  identity.name = identity.path.TailFrom("\\");
  (void)identity.name.Take(1);
  return identity;
}

}  // namespace

ProcessIdentity IdentityOf(HANDLE process) {
  HMODULE image = nullptr;
  DWORD needed = 0;
  if (!K32EnumProcessModules(process, &image, sizeof(HMODULE), &needed)) return IdentityByImage(process);
  wchar_t name[MAX_PATH] = {};
  const DWORD length = K32GetModuleBaseNameW(process, image, name, MAX_PATH);
  return {MString(WideView(name, std::min<size_t>(length, MAX_PATH - 1))), ModulePath(process, image)};
}

bool GetProcessIdentity(uint32_t id, MString* name, MString* path) {
  const KernelHandle process(OpenProcess(kReadRights, FALSE, id));
  if (!process) return false;
  ProcessIdentity identity = IdentityOf(process.Get());
  *name = std::move(identity.name);
  *path = std::move(identity.path);
  return true;
}

std::optional<std::vector<uint32_t>> RunningProcesses::List() {
  wchar_t directory[MAX_PATH] = {};
  const UINT length = GetSystemDirectoryW(directory, MAX_PATH);
  if (length == 0 || length >= MAX_PATH) return std::nullopt;
  const LibraryHandle library(LoadLibraryW((WideString(directory) + L"\\psapi.dll").c_str()));
  auto* const enumerate = reinterpret_cast<decltype(&::K32EnumProcesses)>(
      reinterpret_cast<void*>(library ? GetProcAddress(library.Get(), "EnumProcesses") : nullptr));
  if (enumerate == nullptr) return std::vector<uint32_t>();
  std::array<DWORD, kMostProcesses> ids = {};
  DWORD bytes = 0;
  if (!enumerate(ids.data(), sizeof(ids), &bytes)) return std::nullopt;
  return std::vector<uint32_t>(ids.begin(), ids.begin() + std::min(bytes / sizeof(DWORD), ids.size()));
}

std::optional<ProcessIdentity> RunningProcesses::Identify(uint32_t id) {
  ProcessIdentity identity;
  if (!GetProcessIdentity(id, &identity.name, &identity.path)) return std::nullopt;
  return identity;
}

std::vector<MString> RunningProcesses::LoadedFiles(uint32_t id) {
  KernelHandle process(OpenProcess(kReadRights, FALSE, id));
  if (!process) return {};
  std::array<HMODULE, kMostModules> modules = {};
  DWORD bytes = 0;
  std::vector<MString> files;
  if (K32EnumProcessModules(process.Get(), modules.data(), sizeof(modules), &bytes)) {
    std::transform(modules.begin(), modules.begin() + std::min(bytes / sizeof(HMODULE), modules.size()),
                   std::back_inserter(files), [&process](HMODULE module) { return ModulePath(process.Get(), module); });
  }
  // Left open on purpose, until this program ends: as long as somebody holds it, the id that a conflict was found under
  // is not given to another process.
  (void)process.Release();
  return files;
}

void RunningProcesses::End(uint32_t id) {
  const KernelHandle process(OpenProcess(PROCESS_TERMINATE, FALSE, id));
  if (process) TerminateProcess(process.Get(), 0);
}
