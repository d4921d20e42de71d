// Commands on the connection directory: lcd listen, send, ls, prune.
#include <windows.h>

#include <cstring>
#include <iterator>

#include "client/Command.h"
#include "client/HresultNames.h"
#include "engine/Handles.h"

namespace {

constexpr size_t kListAt = 40976;
constexpr size_t kSegmentBytes = 64528;
constexpr DWORD kPollMilliseconds = 10;

SAFEARRAY* MakeMessage(const std::string& name, const std::string& text) {
  std::string message = {2, static_cast<char>(name.size() >> 8), static_cast<char>(name.size())};
  message += name + text;
  SAFEARRAY* const array = SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(message.size()));
  void* bytes = nullptr;
  if (array != nullptr && SUCCEEDED(SafeArrayAccessData(array, &bytes))) {
    std::memcpy(bytes, message.data(), message.size());
    SafeArrayUnaccessData(array);
  }
  return array;
}

std::string BytesOf(SAFEARRAY* array) {
  void* bytes = nullptr;
  if (array == nullptr || FAILED(SafeArrayAccessData(array, &bytes))) return {};
  std::string text(static_cast<const char*>(bytes), array->rgsabound[0].cElements);
  SafeArrayUnaccessData(array);
  return text;
}

// Takes the message in the slot if it is for `name`. The lock is held from the look at the target to the clearing.
bool TakeMessage(ILumenBroker6* broker, const std::string& name, std::string& text) {
  LONG holds = 0;
  if (FAILED(broker->BrokerLcdLock(&holds)) || holds < 1) return false;
  BString target;
  SAFEARRAY* data = nullptr;
  const bool ours = broker->BrokerLcdGetMessageTarget(target.Receive()) == S_OK && ToUtf8(target.View()) == name &&
                    broker->BrokerLcdGetMessageData(&data) == S_OK;
  if (ours) {
    const std::string message = BytesOf(data);
    const size_t header = message.empty() || message[0] == 2 ? 3 : 5;
    text = message.size() > header + name.size() ? message.substr(header + name.size()) : "";
    broker->BrokerLcdClearMessage();
  }
  if (data != nullptr) SafeArrayDestroy(data);
  broker->BrokerLcdUnlock(&holds);
  return ours;
}

Outcome CheckListen(const Arguments& arguments, bool /*openFiles*/) {
  return arguments.AreNumbers({"--count", "--timeout", "--realm"})
             ? Outcome()
             : Outcome::BadUsage("--count, --timeout and --realm want numbers");
}

Outcome Listen(Context& context) {
  const auto count = context.arguments.Number("--count", UINT32_MAX);
  const auto timeout = context.arguments.Number("--timeout", UINT32_MAX);
  const auto realm = context.arguments.Number("--realm", 0);
  const std::string& name = context.arguments.Positional()[0];
  const BString wide = TextArgument(context, 0);
  const HRESULT added = context.broker->BrokerLcdTryAddConnection(wide.Get(), *realm, *realm, '1');
  if (added != S_OK) return {ExitCode::Refused, added, ""};
  if (!context.silent) PrintError("listening as " + name + "\n");
  const DWORD begin = GetTickCount();
  uint32_t taken = 0;
  while (taken < *count && GetTickCount() - begin < *timeout) {
    std::string text;
    if (!TakeMessage(context.broker, name, text)) {
      Sleep(kPollMilliseconds);  // the directory has no way to tell; its users look
      continue;
    }
    ++taken;
    if (context.json)
      Print(JsonObject().Text("from", name).Text("text", text).Close() + "\n");
    else
      Print(text + "\n");
  }
  context.broker->BrokerLcdRemoveConnection(wide.Get(), *realm);
  if (taken < *count && *count != UINT32_MAX) return Outcome::LocalFailure("no more messages came in time");
  return Outcome::Of(S_OK);
}

Outcome CheckSend(const Arguments& arguments, bool /*openFiles*/) {
  if (!arguments.AreNumbers({"--version", "--format", "--realm", "--retry"})) {
    return Outcome::BadUsage("the options want numbers");
  }
  const std::string& name = arguments.Positional()[0];
  const bool fits = name.size() <= 1023 && name.size() + arguments.Positional()[1].size() + 3 <= 40960;
  return fits ? Outcome() : Outcome::BadUsage("too long for a message");
}

Outcome Send(Context& context) {
  const auto version = context.arguments.Number("--version", 11);
  const auto format = context.arguments.Number("--format", 1);
  const auto realm = context.arguments.Number("--realm", 0);
  const auto patience = context.arguments.Number("--retry", 0);
  const std::string& name = context.arguments.Positional()[0];
  const std::string& text = context.arguments.Positional()[1];
  const DWORD begin = GetTickCount();
  for (;;) {
    SAFEARRAY* const message = MakeMessage(name, text);
    if (message == nullptr) return Outcome::Of(E_OUTOFMEMORY);
    const HRESULT sent = context.broker->BrokerLcdDispatchMessage(message, *version, *format, *realm);
    SafeArrayDestroy(message);
    // Taken slots come free, and listeners come up.
    const bool again = sent == S_FALSE || sent == E_INVALIDARG;
    if (!again || GetTickCount() - begin >= *patience) {
      return {sent == S_OK ? ExitCode::Done : ExitCode::Refused, sent, ""};
    }
    Sleep(kPollMilliseconds);
  }
}

// The broker has no method for this: the list is read from the segment, as any participant may.
Outcome List(Context& context) {
  const KernelHandle mapping(OpenFileMappingA(FILE_MAP_READ, FALSE, "HalcyonicsFMOmega"));
  if (!mapping) return Outcome::Of(S_OK);  // nobody takes part
  const MappedView view(MapViewOfFile(mapping.Get(), FILE_MAP_READ, 0, 0, kSegmentBytes));
  if (!view) return Outcome::LocalFailure("the directory cannot be read");
  const char* at = static_cast<const char*>(view.Get()) + kListAt;
  const char* const end = static_cast<const char*>(view.Get()) + kSegmentBytes;
  while (at < end && *at != 0) {
    const size_t length = strnlen(at, static_cast<size_t>(end - at));
    const std::string text(at, length);
    if (!text.starts_with("::")) Print(context.json ? JsonObject().Text("name", text).Close() + "\n" : text + "\n");
    at += length + 1;
  }
  return Outcome::Of(S_OK);
}

Outcome Prune(Context& context) {
  const HRESULT pruned = context.broker->BrokerLcdPruneDeadMessage();
  if (!context.silent && !context.json) Print(pruned == S_OK ? "a dead message is gone\n" : "there was none\n");
  return Outcome::Of(pruned);
}

}  // namespace

std::span<const Command> LcdCommands() {
  static const std::vector<Command> commands = {
      {"lcd listen",
       "NAME [--count N] [--timeout MS] [--realm R]",
       "listen under a name and show what comes",
       "Ends after N messages or MS milliseconds; without either it goes on.",
       {{"--count", true}, {"--timeout", true}, {"--realm", true}},
       1,
       1,
       Listen,
       CheckListen},
      {"lcd send",
       "NAME TEXT [--format F] [--version V] [--realm R] [--retry MS]",
       "send a message to a name",
       "Goes on trying for MS milliseconds while the slot is taken or nobody listens. 1 means that the slot was "
       "taken,\n"
       "E_INVALIDARG that nobody listens under that name in that format.",
       {{"--format", true}, {"--version", true}, {"--realm", true}, {"--retry", true}},
       2,
       2,
       Send,
       CheckSend},
      {"lcd ls", "", "list the names that listen", "", {}, 0, 0, List},
      {"lcd prune", "", "take out a message that nobody collected", "", {}, 0, 0, Prune},
  };
  return commands;
}
