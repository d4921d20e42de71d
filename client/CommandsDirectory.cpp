// Commands on names: ls, mv, rm, mkdir, rmdir, stat, writable, clear-history.
#include <cstdio>

#include "client/Command.h"
#include "client/HresultNames.h"

namespace {

constexpr LONG kReplaceExisting = 1;

std::string AttributeLetters(ULONG attributes) {
  std::string letters;
  letters += (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? 'd' : '-';
  letters += (attributes & FILE_ATTRIBUTE_READONLY) != 0 ? 'r' : '-';
  letters += (attributes & FILE_ATTRIBUTE_HIDDEN) != 0 ? 'h' : '-';
  letters += (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 ? 'l' : '-';
  return letters;
}

void ShowEntry(const Context& context, const BString& name, ULONG attributes) {
  const std::string text = ToUtf8(name.View());
  if (context.json) {
    Print(JsonObject().Text("name", text).Number("attributes", attributes).Close() + "\n");
  } else if (!context.silent) {
    Print(AttributeLetters(attributes) + "  " + text + "\n");
  }
}

Outcome List(Context& context) {
  std::string pattern = context.arguments.Positional()[0];
  if (pattern.find_first_of("*?") == std::string::npos) pattern += "\\*";
  ULONG cookie = 0;
  ULONG attributes = 0;
  BString name;
  HRESULT result =
      context.broker->BrokerFindFirstFile(BString(FromUtf8(pattern)).Get(), name.Receive(), &attributes, &cookie);
  if (FAILED(result)) return Outcome::Of(result);
  const auto wanted = context.arguments.Value("--expect");
  bool seen = false;
  do {
    ShowEntry(context, name, attributes);
    seen = seen || (wanted && ToUtf8(name.View()) == *wanted);
    result = context.broker->BrokerFindNextFile(cookie, name.Receive(), &attributes);
  } while (SUCCEEDED(result));
  const HRESULT closed = context.broker->BrokerFindClose(cookie);
  if (result != static_cast<HRESULT>(0x80070012)) return Outcome::Of(result);
  if (wanted && !seen) return Outcome::LocalFailure(*wanted + " is not in the listing");
  return Outcome::Of(closed);
}

Outcome Move(Context& context) {
  const LONG flags = context.arguments.Has("--replace") ? kReplaceExisting : 0;
  return Outcome::Of(
      context.broker->BrokerMoveFileEx(TextArgument(context, 0).Get(), TextArgument(context, 1).Get(), flags));
}

Outcome Remove(Context& context) {
  return Outcome::Of(context.broker->BrokerDeleteFile(TextArgument(context, 0).Get()));
}

Outcome MakeDirectory(Context& context) {
  return Outcome::Of(context.broker->BrokerCreateDirectory(TextArgument(context, 0).Get()));
}

Outcome RemoveDirectory_(Context& context) {
  return Outcome::Of(context.broker->BrokerRemoveDirectory(TextArgument(context, 0).Get()));
}

Outcome ClearHistory(Context& context) {
  return Outcome::Of(context.broker->BrokerDeleteBrowsingHistory(TextArgument(context, 0).Get()));
}

std::string TimeText(ULONG low, ULONG high) {
  const FILETIME time = {low, high};
  SYSTEMTIME t = {};
  if (!FileTimeToSystemTime(&time, &t)) return "?";
  char text[40];
  std::snprintf(text, sizeof(text), "%04u-%02u-%02uT%02u:%02u:%02uZ", t.wYear, t.wMonth, t.wDay, t.wHour, t.wMinute,
                t.wSecond);
  return text;
}

Outcome Stat(Context& context) {
  ULONG attributes = 0, created[2] = {}, read[2] = {}, written[2] = {}, sizeLow = 0, sizeHigh = 0;
  const HRESULT result =
      context.broker->BrokerGetFileAttributesEx(TextArgument(context, 0).Get(), &attributes, &created[0], &created[1],
                                                &read[0], &read[1], &written[0], &written[1], &sizeLow, &sizeHigh);
  if (FAILED(result)) return Outcome::Of(result);
  const uint64_t size = static_cast<uint64_t>(sizeHigh) << 32 | sizeLow;
  if (context.json) {
    Print(JsonObject()
              .Number("attributes", attributes)
              .Number("size", size)
              .Text("created", TimeText(created[0], created[1]))
              .Text("read", TimeText(read[0], read[1]))
              .Text("written", TimeText(written[0], written[1]))
              .Close() +
          "\n");
  } else if (!context.silent) {
    Print("attributes  " + AttributeLetters(attributes) + "\nsize        " + std::to_string(size) + "\ncreated     " +
          TimeText(created[0], created[1]) + "\nread        " + TimeText(read[0], read[1]) + "\nwritten     " +
          TimeText(written[0], written[1]) + "\n");
  }
  return Outcome::Of(S_OK);
}

Outcome Writable(Context& context) {
  const LONG extension = context.arguments.Has("--any-ending") ? 0 : 1;
  const HRESULT result = context.broker->BrokerIsWritablePath(TextArgument(context, 0).Get(), extension);
  if (!context.silent && !context.json) Print(SUCCEEDED(result) ? "writable\n" : "not writable\n");
  return Outcome::Of(result);
}

}  // namespace

std::span<const Command> DirectoryCommands() {
  static const std::vector<Command> commands = {
      {"ls",
       "PATH [--expect NAME]",
       "list a directory or a pattern",
       "Listing is open in the roaming application data, the temp directory and the player's system directories.",
       {{"--expect", true}},
       1,
       1,
       List},
      {"mv",
       "OLD NEW [--replace]",
       "move a file",
       "Both names must be writable. Directories cannot be moved.",
       {{"--replace"}},
       2,
       2,
       Move},
      {"rm", "PATH", "delete a file", "Any ending, where the player may write.", {}, 1, 1, Remove},
      {"mkdir",
       "PATH",
       "make a directory",
       "Below the makers' directories in the application data.",
       {},
       1,
       1,
       MakeDirectory},
      {"rmdir", "PATH", "remove an empty directory", "", {}, 1, 1, RemoveDirectory_},
      {"stat", "PATH", "show a file's attributes, size and times", "Not restricted by path.", {}, 1, 1, Stat},
      {"writable",
       "PATH [--any-ending]",
       "ask whether a path may be written",
       "Nothing changes.",
       {{"--any-ending"}},
       1,
       1,
       Writable},
      {"clear-history",
       "ROOT",
       "delete the shared objects below a root and make their directory again",
       "",
       {},
       1,
       1,
       ClearHistory},
  };
  return commands;
}
