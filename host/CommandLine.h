// The host's command line: one command, its words and the options that go with it. The table of commands in
// CommandLine.cpp also makes the help text.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

enum class HostCommand {
  Help,
  Install,
  Uninstall,
  Maintain,
  Update,
  Check,
  Conflicts,
  Status,
  Gallery,
  Register,
  Unregister,
  RefreshPolicies,
  Broker,
};

// The program's exit codes. With -Embedding the code is the broker's own.
enum class HostExit : int {
  Done = 0,
  Failed = 1,         // the command was carried out and failed
  Usage = 2,          // the command line was not understood
  NoModule = 3,       // the module could not be loaded, or gave no shim
  NoFile = 4,         // the log could not be opened, or the settings could not be read
  RestartNeeded = 5,  // done, and complete after the next restart
  Refused = 6,        // this build may not be installed here, or not by this user, or another installer is at work
  Conflicts = 7,      // programs that use the player are running
  Left = 1039,        // the user left the window before anything was done
};

struct HostCommandLine {
  HostCommand command = HostCommand::Help;
  uint32_t kinds = 0;     // product_kind flags
  uint32_t language = 0;  // of the texts, a platform identifier; 0 for the user's own
  bool silent = false;    // no questions, no progress
  bool console = false;   // questions and progress on the console instead of in a window
  bool whatIf = false;    // tell what would change, change nothing
  std::string logFile;    // -log FILE; empty for none
  std::string error;      // not empty: the line was not understood, and this says why

  // Whether the command shows itself in the installer's window.
  [[nodiscard]] bool InWindow() const;
};

// `words` without the program's name, UTF-8. Options may begin with "-" or "/", and letters count in either case, as
// COM and administrators write them. No command at all is Install without a kind,
// in the window.
[[nodiscard]] HostCommandLine ParseHostCommandLine(const std::vector<std::string>& words);
// The product kind of a word, in either case; nothing for another word.
[[nodiscard]] std::optional<uint32_t> KindOfWord(std::string_view word);
// The word of one product kind, and the name that people know it by; empty for another number.
[[nodiscard]] std::string_view WordOfKind(uint32_t kind);
[[nodiscard]] std::string_view NameOfKind(uint32_t kind);
// The kinds of a set one by one, in the order in which they are installed.
[[nodiscard]] std::vector<uint32_t> EachKind(uint32_t kinds);
// The text of -help.
[[nodiscard]] std::string HostUsage();
