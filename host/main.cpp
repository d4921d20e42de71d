// LumenHost: loads the module from its own directory, and does what its command line says.
#include <windows.h>

#include <shellapi.h>

#include <string>
#include <vector>

#include "engine/DllHelpers.h"
#include "engine/Handles.h"
#include "engine/LumenBrokerShim.h"
#include "engine/ProductIds.h"
#include "engine/ProductKind.h"
#include "host/CommandLine.h"
#include "host/Gallery.h"
#include "host/ReferenceHost.h"

namespace {

enum Exit : int { kDone = 0, kFailed = 1, kUsage = 2, kNoModule = 3, kNoFile = 4 };

using StartFunction = LumenBrokerShim*(HostCallbacks*);

// A windows program has no console of its own; when it was started from one it borrows that, so that COM's starts show
// none.
void Say(std::string_view text, DWORD stream) {
  HANDLE out = GetStdHandle(stream);
  if (out == nullptr || out == INVALID_HANDLE_VALUE) {
    AttachConsole(ATTACH_PARENT_PROCESS);
    out = GetStdHandle(stream);
  }
  DWORD written = 0;
  WriteFile(out, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
}

WideString Directory(const WideString& path) {
  return path.substr(0, path.find_last_of(L'\\') + 1);
}

// A vendor's copy has a name of its own and a module of the same name beside it; ours finds the module under its own.
LibraryHandle LoadModule(const WideString& own) {
  const WideString named = own.substr(0, own.rfind(L'.')) + L".dll";
  LibraryHandle module(LoadLibraryW(named.c_str()));
  if (!module) module.Reset(LoadLibraryW((Directory(own) + L"LumenUtil.dll").c_str()));
  return module;
}

// Ends the shim before the module goes.
class ShimOwner {
 public:
  ShimOwner(StartFunction* start, HostCallbacks* host) : shim(start == nullptr ? nullptr : start(host)) {
    host->shim = shim;
  }
  ~ShimOwner() {
    if (shim != nullptr) shim->Destroy(1);
  }
  ShimOwner(const ShimOwner&) = delete;
  ShimOwner& operator=(const ShimOwner&) = delete;
  LumenBrokerShim* operator->() const { return shim; }
  explicit operator bool() const { return shim != nullptr; }

 private:
  LumenBrokerShim* shim;
};

int Register(const ShimOwner& shim, const HostCommandLine& line) {
  const unsigned kind = KindOfWord(line.kind).value_or(0);
  if (!shim->RegisterBrokerServer(MString(WideView(OwnPath())), kind)) return kFailed;
  Say(kind == product_kind::ActiveX ? "The broker is registered.\n" : "This kind has no broker; nothing to register.\n",
      STD_OUTPUT_HANDLE);
  return kDone;
}

// Until the module removes products, the host takes back what -register wrote, key by key.
int Unregister(const HostCommandLine& line) {
  if (KindOfWord(line.kind) != product_kind::ActiveX) {
    Say("This kind has no broker; nothing to take away.\n", STD_OUTPUT_HANDLE);
    return kDone;
  }
  for (const wchar_t* const key :
       {L"Software\\Classes\\CLSID\\" LUMEN_BROKER_CLASS_ID_6, L"Software\\Classes\\TypeLib\\" LUMEN_BROKER_LIBRARY_ID,
        L"Software\\Classes\\Interface\\" LUMEN_BROKER_INTERFACE_ID_6,
        L"Software\\Microsoft\\Internet Explorer\\Low Rights\\ElevationPolicy\\" LUMEN_BROKER_ELEVATION_POLICY_ID}) {
    (void)DeleteKeyTree(HKEY_LOCAL_MACHINE, key);
  }
  Say("The broker's registration is gone.\n", STD_OUTPUT_HANDLE);
  return kDone;
}

int Run(const HostCommandLine& line, const ShimOwner& shim, HostCallbacks& host) {
  switch (line.command) {
    case HostCommand::Broker: return static_cast<int>(shim->RunBroker());
    case HostCommand::Register: return Register(shim, line);
    case HostCommand::Unregister: return Unregister(line);
    case HostCommand::RefreshPolicies: return shim->RefreshElevationPolicy() ? kDone : kFailed;
    case HostCommand::Gallery: return RunGallery(host, line.language);
    case HostCommand::Help: break;
  }
  Say(HostUsage(), STD_OUTPUT_HANDLE);
  return kDone;
}

std::vector<std::string> Words() {
  std::vector<std::string> words;
  int count = 0;
  wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &count);
  for (int i = 1; i < count; ++i) words.push_back(ToUtf8(wide[i]));
  LocalFree(wide);
  return words;
}

}  // namespace

int WINAPI wWinMain(HINSTANCE /*instance*/, HINSTANCE /*previous*/, PWSTR /*commandLine*/, int /*show*/) {
  const HostCommandLine line = ParseHostCommandLine(Words());
  if (!line.error.empty()) {
    Say("LumenHost: " + line.error + "\n\n" + std::string(HostUsage()), STD_ERROR_HANDLE);
    return kUsage;
  }
  const WideString own = OwnPath();
  ReferenceHost host;
  if (!line.logFile.empty() && !host.Log().OpenFile(FromUtf8(line.logFile).c_str())) {
    Say("LumenHost: cannot write to " + line.logFile + "\n", STD_ERROR_HANDLE);
    return kNoFile;
  }
  if (!host.ReadSettings((own.substr(0, own.rfind(L'.')) + L".settings").c_str())) {
    Say("LumenHost: cannot read the settings beside this program\n", STD_ERROR_HANDLE);
    return kNoFile;
  }
  const LibraryHandle module = LoadModule(own);
  auto* const start = reinterpret_cast<StartFunction*>(
      reinterpret_cast<void*>(module ? GetProcAddress(module.Get(), "Start") : nullptr));
  host.resourceModule = module.Get();
  const ShimOwner shim(start, &host);
  if (!shim) {
    Say("LumenHost: LumenUtil.dll cannot be loaded from this program's directory\n", STD_ERROR_HANDLE);
    return kNoModule;
  }
  return Run(line, shim, host);
}
