// Commands on preferences and small services, shortcuts and audio notification.
#include <windows.h>

#include <tlhelp32.h>

#include <fstream>
#include <iterator>

#include "client/Command.h"
#include "client/HresultNames.h"
#include "engine/Handles.h"

namespace {

void Tell(const Context& context, std::string_view name, const std::string& value) {
  if (context.json)
    Print(JsonObject().Text(name, value).Close() + "\n");
  else if (!context.silent)
    Print(value + "\n");
}

Outcome GetVersion(Context& context) {
  BString version;
  const HRESULT result = context.arguments.Has("--delete")
                             ? context.broker->BrokerPrefGetAndDeleteLumenPlayerVersion(version.Receive())
                             : context.broker->BrokerPrefGetLumenPlayerVersion(version.Receive());
  if (SUCCEEDED(result)) Tell(context, "version", ToUtf8(version.View()));
  return Outcome::Of(result);
}

Outcome DeleteVersion(Context& context) {
  return Outcome::Of(context.broker->BrokerPrefDeleteLumenPlayerVersion());
}

Outcome GetDialogSize(Context& context) {
  ULONG width = 0, height = 0;
  const HRESULT result = context.broker->BrokerPrefGetExceptionDialogSize(&width, &height);
  if (SUCCEEDED(result)) Tell(context, "size", std::to_string(width) + " " + std::to_string(height));
  return Outcome::Of(result);
}

// The two positional arguments, as options that can be read as numbers.
Arguments Sizes(const Arguments& arguments) {
  return Arguments({"--w", arguments.Positional()[0], "--h", arguments.Positional()[1]},
                   {{"--w", true}, {"--h", true}});
}

Outcome CheckDialogSize(const Arguments& arguments, bool /*openFiles*/) {
  return Sizes(arguments).AreNumbers({"--w", "--h"}) ? Outcome() : Outcome::BadUsage("width and height want numbers");
}

Outcome SetDialogSize(Context& context) {
  const Arguments sizes = Sizes(context.arguments);
  const auto width = sizes.Number("--w", 0);
  const auto height = sizes.Number("--h", 0);
  return Outcome::Of(context.broker->BrokerPrefSetExceptionDialogSize(*width, *height));
}

std::optional<std::string> ReadLocal(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return std::nullopt;
  return std::string(std::istreambuf_iterator<char>(in), {});
}

Outcome CheckMarkUpdate(const Arguments& arguments, bool openFiles) {
  const std::string& path = arguments.Positional()[0];
  return !openFiles || ReadLocal(path) ? Outcome() : Outcome::LocalFailure("cannot read " + path);
}

Outcome MarkUpdate(Context& context) {
  const auto text = ReadLocal(context.arguments.Positional()[0]);
  if (!text) return Outcome::LocalFailure("cannot read " + context.arguments.Positional()[0]);
  return Outcome::Of(context.broker->BrokerPrefMarkAutoUpdaterForRun(BString(WideView(FromUtf8(*text))).Get()));
}

Outcome Icon(Context& context) {
  BString path;
  const HRESULT result = context.broker->BrokerCreateIconPathV2(TextArgument(context, 0).Get(), path.Receive(),
                                                                context.arguments.Has("--overwrite") ? 1 : 0);
  if (SUCCEEDED(result)) Tell(context, "path", ToUtf8(path.View()));
  return Outcome::Of(result);
}

Outcome CheckFlags(const Arguments& arguments, bool /*openFiles*/) {
  return arguments.AreNumbers({"--flags"}) ? Outcome() : Outcome::BadUsage("--flags wants a number");
}

Outcome DesktopShortcut(Context& context) {
  const auto flags = context.arguments.Number("--flags", 1);
  const auto icon = context.arguments.Value("--icon");
  return Outcome::Of(
      context.broker->BrokerCreateDesktopShortcut(TextArgument(context, 0).Get(), TextArgument(context, 1).Get(),
                                                  BString(WideView(FromUtf8(icon.value_or("")))).Get(), *flags));
}

SAFEARRAY* ArrayOf(const std::string& bytes) {
  SAFEARRAY* const array = SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(bytes.size()));
  void* data = nullptr;
  if (array != nullptr && SUCCEEDED(SafeArrayAccessData(array, &data))) {
    std::copy(bytes.begin(), bytes.end(), static_cast<char*>(data));
    SafeArrayUnaccessData(array);
  }
  return array;
}

Outcome CheckInternetShortcut(const Arguments& arguments, bool openFiles) {
  Outcome outcome = CheckFlags(arguments, openFiles);
  for (const char* const option : {"--auth", "--strings"}) {
    const std::string path = arguments.Value(option).value_or("");
    if (outcome.code == ExitCode::Done && openFiles && !ReadLocal(path)) {
      outcome = Outcome::LocalFailure("--auth and --strings name files that can be read");
    }
  }
  return outcome;
}

Outcome InternetShortcut(Context& context) {
  const auto flags = context.arguments.Number("--flags", 1);
  const auto message = ReadLocal(context.arguments.Value("--auth").value_or(""));
  const auto strings = ReadLocal(context.arguments.Value("--strings").value_or(""));
  if (!message || !strings) return Outcome::LocalFailure("--auth and --strings name files that can be read");
  SAFEARRAY* const authArray = ArrayOf(*message);
  SAFEARRAY* const stringsArray = ArrayOf(*strings);
  const HRESULT result =
      context.broker->BrokerCreateInternetShortcut(TextArgument(context, 0).Get(), TextArgument(context, 1).Get(),
                                                   TextArgument(context, 2).Get(), authArray, stringsArray, *flags);
  SafeArrayDestroy(authArray);
  SafeArrayDestroy(stringsArray);
  return Outcome::Of(result);
}

Outcome Drive(Context& context) {
  WideString root = FromUtf8(context.arguments.Positional()[0]);
  const HRESULT result = context.broker->BrokerIsDriveAvailable(root.data());
  if (SUCCEEDED(result)) Tell(context, "drive", result == S_OK ? "there" : "not there");
  return Outcome::Of(result);
}

Outcome Joysticks(Context& context) {
  ULONG count = 0;
  const HRESULT result = context.broker->BrokerGetDirectInputCount(&count);
  if (SUCCEEDED(result)) Tell(context, "count", std::to_string(count));
  return Outcome::Of(result);
}

Outcome DelayScreensaver(Context& context) {
  return Outcome::Of(context.broker->BrokerDelayScreensaver());
}

// A handle of this process that is valid in the broker's, which is what the audio methods want.
LONG_PTR OwnProcessInServer() {
  const KernelHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
  PROCESSENTRY32W entry = {};
  entry.dwSize = sizeof(entry);
  for (BOOL more = Process32FirstW(snapshot.Get(), &entry); more; more = Process32NextW(snapshot.Get(), &entry)) {
    if (lstrcmpiW(entry.szExeFile, L"LumenHost.exe") != 0) continue;
    const KernelHandle server(OpenProcess(PROCESS_DUP_HANDLE, FALSE, entry.th32ProcessID));
    HANDLE handle = nullptr;
    if (server && DuplicateHandle(GetCurrentProcess(), GetCurrentProcess(), server.Get(), &handle, PROCESS_DUP_HANDLE,
                                  FALSE, 0)) {
      return reinterpret_cast<LONG_PTR>(handle);
    }
  }
  return 0;
}

Outcome CheckWatchAudio(const Arguments& arguments, bool /*openFiles*/) {
  return arguments.AreNumbers({"--seconds"}) ? Outcome() : Outcome::BadUsage("--seconds wants a number");
}

Outcome WatchAudio(Context& context) {
  const auto seconds = context.arguments.Number("--seconds", 30);
  const LONG_PTR process = OwnProcessInServer();
  if (process == 0) return Outcome::LocalFailure("the broker's process cannot be reached");
  const KernelHandle changed(CreateEventW(nullptr, FALSE, FALSE, nullptr));
  const KernelHandle state(CreateEventW(nullptr, FALSE, FALSE, nullptr));
  LONG_PTR client = 0;
  HRESULT result = context.broker->BrokerMMNotificationClientCreate(process, &client);
  if (result == S_OK) {
    result = context.broker->BrokerMMNotificationClientSetDefaultDeviceChangeEvent(
        client, reinterpret_cast<LONG_PTR>(changed.Get()));
  }
  if (result == S_OK) {
    result = context.broker->BrokerMMNotificationClientSetDeviceStateChangeEvent(
        client, reinterpret_cast<LONG_PTR>(state.Get()));
  }
  if (result != S_OK) return {ExitCode::Refused, result, ""};
  const HANDLE events[] = {changed.Get(), state.Get()};
  const DWORD begin = GetTickCount();
  for (DWORD passed = 0; passed < *seconds * 1000; passed = GetTickCount() - begin) {
    const DWORD which = WaitForMultipleObjects(2, events, FALSE, *seconds * 1000 - passed);
    if (which == WAIT_OBJECT_0) Tell(context, "event", "the default device has changed");
    if (which == WAIT_OBJECT_0 + 1) Tell(context, "event", "a playing device has changed its state");
  }
  return Outcome::Of(context.broker->BrokerMMNotificationClientDestroy(client));
}

}  // namespace

std::span<const Command> ServiceCommands() {
  static const std::vector<Command> commands = {
      {"pref get version",
       "[--delete]",
       "show the pending player version",
       "--delete takes it away as well.",
       {{"--delete"}},
       0,
       0,
       GetVersion},
      {"pref delete version", "", "take the pending player version away", "", {}, 0, 0, DeleteVersion},
      {"pref get dialog-size", "", "show the exception dialog's size", "", {}, 0, 0, GetDialogSize},
      {"pref set dialog-size",
       "WIDTH HEIGHT",
       "set the exception dialog's size",
       "",
       {},
       2,
       2,
       SetDialogSize,
       CheckDialogSize},
      {"mark-update",
       "FILE",
       "store a server's update text and run the updater at the next logon",
       "",
       {},
       1,
       1,
       MarkUpdate,
       CheckMarkUpdate},
      {"icon",
       "NAME [--overwrite]",
       "name a file in the icon cache",
       "The icon itself is written with write.",
       {{"--overwrite"}},
       1,
       1,
       Icon},
      {"shortcut desktop",
       "NAME URL [--icon PATH] [--flags N]",
       "make shortcuts to the vendor's redirector",
       "--flags adds up 1 desktop, 2 start menu, 4 quick launch, 8 taskbar (with 4). One call in 3,001 milliseconds.",
       {{"--icon", true}, {"--flags", true}},
       2,
       2,
       DesktopShortcut,
       CheckFlags},
      {"shortcut internet",
       "NAME URL ICON --auth FILE --strings FILE [--flags N]",
       "make shortcuts that a signed message entitles to",
       "",
       {{"--auth", true}, {"--strings", true}, {"--flags", true}},
       3,
       3,
       InternetShortcut,
       CheckInternetShortcut},
      {"audio watch",
       "[--seconds N]",
       "tell when the audio devices change",
       "",
       {{"--seconds", true}},
       0,
       0,
       WatchAudio,
       CheckWatchAudio},
      {"drive", "LETTER:", "ask whether a drive is there", "", {}, 1, 1, Drive},
      {"joysticks", "", "count the game controllers", "", {}, 0, 0, Joysticks},
      {"delay-screensaver", "", "start the screen saver's time anew", "", {}, 0, 0, DelayScreensaver},
  };
  return commands;
}
