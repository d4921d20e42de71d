// What a subcommand is, and what it works with. A family of commands is one Commands*.cpp with a table of these.
#pragma once

#include <windows.h>

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "LumenBroker.h"
#include "client/Arguments.h"
#include "client/Json.h"
#include "engine/ComSupport.h"

// Exit codes of lumenctl.
enum class ExitCode : int {
  Done = 0,
  Refused = 1,   // the broker refused or failed; the HRESULT is shown
  Usage = 2,     // the command line was not understood
  NoBroker = 3,  // the broker could not be activated
  Differs = 4,   // a step of an account had another result than it should
  LocalFile = 5  // a file of the caller's own could not be read or written
};

// How a command ended.
struct Outcome {
  ExitCode code = ExitCode::Done;
  HRESULT result = S_OK;
  std::string message;  // for a usage or local failure: what was wrong

  static Outcome Of(HRESULT result) { return {FAILED(result) ? ExitCode::Refused : ExitCode::Done, result, ""}; }
  static Outcome BadUsage(std::string what) { return {ExitCode::Usage, E_INVALIDARG, std::move(what)}; }
  static Outcome LocalFailure(std::string what) { return {ExitCode::LocalFile, E_FAIL, std::move(what)}; }
};

// Where a command runs: its broker object, its arguments and its output.
struct Context {
  ILumenBroker6* broker;
  const Arguments& arguments;
  bool json;    // one JSON object a line instead of text
  bool silent;  // an account shows results itself
};

struct Command {
  std::string_view name;      // one word or more
  std::string_view synopsis;  // what follows the name
  std::string_view summary;   // one line
  std::string_view details;   // the rest of -h, may be empty
  std::vector<OptionSpec> options;
  size_t fewest;  // positional arguments
  size_t most;
  Outcome (*run)(Context& context);
  // Looks at the arguments alone, before there is a broker: Done, or what is wrong. With `openFiles` also whether the
  // caller's own files can be read. Null when any text will do.
  Outcome (*check)(const Arguments& arguments, bool openFiles) = nullptr;
};

// The families.
[[nodiscard]] std::span<const Command> FileCommands();
[[nodiscard]] std::span<const Command> DirectoryCommands();
[[nodiscard]] std::span<const Command> LcdCommands();
[[nodiscard]] std::span<const Command> PrintCommands();
[[nodiscard]] std::span<const Command> ServiceCommands();
[[nodiscard]] std::span<const Command> DialogCommands();
[[nodiscard]] std::span<const Command> AddOnCommands();

// All commands, family by family.
[[nodiscard]] std::vector<const Command*> AllCommands();
// The command whose name the first words spell, one to three of them; `used` tells how many. Null when there is none.
[[nodiscard]] const Command* FindCommand(const std::vector<std::string>& words, size_t& used);

// UTF-8 to standard output, whatever the console's code page.
void Print(std::string_view text);
void PrintError(std::string_view text);
// A positional argument as a BSTR.
[[nodiscard]] BString TextArgument(const Context& context, size_t index);
