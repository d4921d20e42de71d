// LumenHost: loads the module from its own directory, and does what its command line says.
#include <windows.h>

#include <shellapi.h>

#include <exception>
#include <string>
#include <vector>

#include "engine/ProductKind.h"
#include "host/CommandLine.h"
#include "host/Commands.h"
#include "host/Console.h"
#include "host/HostedModule.h"
#include "host/ReferenceHost.h"
#include "host/Session.h"
#include "host/ThreadLanguage.h"

namespace {

int Fail(HostExit code, const std::string& why) {
  SayError("LumenHost: " + why + "\n");
  return static_cast<int>(code);
}

std::vector<std::string> Words() {
  std::vector<std::string> words;
  int count = 0;
  wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &count);
  for (int i = 1; i < count; ++i) words.push_back(ToUtf8(wide[i]));
  LocalFree(wide);
  return words;
}

int Run() {
  HostCommandLine line = ParseHostCommandLine(Words());
  if (!line.error.empty()) return Fail(HostExit::Usage, line.error + "\n\n" + HostUsage());
  if (line.command == HostCommand::Help) {
    Say(HostUsage());
    return static_cast<int>(HostExit::Done);
  }
  UseLanguage(line.language);
  const WideString own = OwnPath();
  ReferenceHost host(line.kinds != 0 ? line.kinds : product_kind::ActiveX);
  if (!line.logFile.empty() && !host.Log().OpenFile(FromUtf8(line.logFile).c_str())) {
    return Fail(HostExit::NoFile, "cannot write to " + line.logFile);
  }
  const WideString settings = SettingsPath();
  if (!host.ReadSettings(settings.c_str())) return Fail(HostExit::NoFile, "cannot read " + ToUtf8(settings));
  const HostedModule module(own, &host);
  if (!module) return Fail(HostExit::NoModule, module.Error());
  const Session session = {line, host, module};
  if (line.command == HostCommand::Install && line.kinds == 0) {
    line.kinds = KindsInPayload(session);
    host.SelectKinds(line.kinds);
  }
  return RunHostCommand(session);
}

}  // namespace

int WINAPI wWinMain(HINSTANCE /*instance*/, HINSTANCE /*previous*/, PWSTR /*commandLine*/, int /*show*/) {
  try {
    return Run();
  } catch (const std::exception& failure) {
    return Fail(HostExit::Failed, failure.what());
  }
}
