#include "client/Runner.h"

#include <algorithm>
#include <fstream>
#include <iterator>

#include "client/Account.h"
#include "client/HresultNames.h"

namespace {

constexpr std::string_view kUsage =
    "lumenctl COMMAND [ARGUMENTS]   talks to the registered broker\n"
    "lumenctl run FILE              runs an account: commands with the results they must have\n"
    "lumenctl COMMAND -h            tells about one command\n\n";

constexpr std::string_view kExitCodes =
    "\n--json gives one JSON object a line and goes with every command.\n\n"
    "Exit codes: 0 done, 1 refused or failed by the broker, 2 not understood, 3 no broker,\n"
    "4 an account differs, 5 a file of your own could not be read or written.\n";

std::string Padded(std::string_view text, size_t width) {
  std::string padded(text);
  // Columns count characters, not bytes.
  const auto shown = static_cast<size_t>(
      std::count_if(text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
  padded.append(shown < width ? width - shown : 1, ' ');
  return padded;
}

void PrintUsage() {
  std::string text(kUsage);
  for (const Command* const command : AllCommands()) {
    text += "  " + Padded(command->name, 22) + std::string(command->summary) + "\n";
  }
  Print(text + std::string(kExitCodes));
}

void PrintHelp(const Command& command) {
  std::string text = "lumenctl " + std::string(command.name) + " " + std::string(command.synopsis) + "\n\n  " +
                     std::string(command.summary) + "\n";
  if (!command.details.empty()) text += "\n" + std::string(command.details) + "\n";
  Print(text);
}

HRESULT Activate(ComPtr<ILumenBroker6>& broker) {
  return CoCreateInstance(CLSID_LumenBrokerImp6, nullptr, CLSCTX_LOCAL_SERVER, IID_ILumenBroker6,
                          reinterpret_cast<void**>(broker.GetAddressOf()));
}

ExitCode ReportNoBroker(HRESULT result) {
  PrintError("lumenctl: the broker cannot be activated: " + DescribeResult(result) +
             "\nRegister it with: LumenHost -register activex\n");
  return ExitCode::NoBroker;
}

// Done, or what is wrong with a command line before anything is done for it.
Outcome CheckArguments(const Command& command, const Arguments& arguments, bool openFiles) {
  const size_t count = arguments.Positional().size();
  if (!arguments.Error().empty()) return Outcome::BadUsage(arguments.Error());
  if (count < command.fewest || count > command.most) {
    return Outcome::BadUsage("wants: " + std::string(command.name) + " " + std::string(command.synopsis));
  }
  return command.check == nullptr ? Outcome() : command.check(arguments, openFiles);
}

std::vector<OptionSpec> OptionsOf(const Command& command) {
  std::vector<OptionSpec> options = command.options;
  options.push_back({"--json"});
  return options;
}

void ShowOutcome(const Command& command, const Arguments& arguments, const Outcome& outcome, bool json) {
  if (json) {
    JsonObject object;
    object.Text("command", command.name).Text("hresult", HexOfResult(outcome.result));
    object.Text("name", NameOfResult(outcome.result)).Flag("ok", outcome.code == ExitCode::Done);
    if (!outcome.message.empty()) object.Text("message", outcome.message);
    Print(object.Close() + "\n");
    return;
  }
  if (outcome.code == ExitCode::Done) return;
  std::string text = "lumenctl " + std::string(command.name);
  if (outcome.code == ExitCode::Refused) {
    for (const std::string& word : arguments.Positional()) text += " " + word;
    text += ": " + DescribeResult(outcome.result);
    if (!outcome.message.empty()) text += "\n" + outcome.message;
  } else {
    text += ": " + outcome.message;
  }
  PrintError(text + "\n");
}

ExitCode RunOne(const Command& command, const std::vector<std::string>& words) {
  const Arguments arguments(words, OptionsOf(command));
  const bool json = arguments.Has("--json");
  Outcome outcome = CheckArguments(command, arguments, true);
  if (outcome.code == ExitCode::Done) {
    ComPtr<ILumenBroker6> broker;
    const HRESULT activated = Activate(broker);
    if (FAILED(activated)) return ReportNoBroker(activated);
    Context context{broker.Get(), arguments, json, false};
    outcome = command.run(context);
  }
  ShowOutcome(command, arguments, outcome, json);
  return outcome.code;
}

std::string ExpandEnvironment(const std::string& word) {
  const WideString wide = FromUtf8(word);
  wchar_t buffer[4096] = {};
  const DWORD length = ExpandEnvironmentStringsW(wide.c_str(), buffer, static_cast<DWORD>(std::size(buffer)));
  return length == 0 || length > std::size(buffer) ? word : ToUtf8(buffer);
}

// One step, or without a broker a look at its words alone: the files it reads may be the work of steps before it.
Outcome RunStep(const AccountStep& step, ILumenBroker6* broker) {
  std::vector<std::string> words;
  std::transform(step.words.begin(), step.words.end(), std::back_inserter(words), ExpandEnvironment);
  size_t used = 0;
  const Command* const command = FindCommand(words, used);
  if (command == nullptr) return Outcome::BadUsage("no such command: " + step.words.front());
  words.erase(words.begin(), words.begin() + static_cast<std::ptrdiff_t>(used));
  const Arguments arguments(words, command->options);
  Outcome checked = CheckArguments(*command, arguments, broker != nullptr);
  if (checked.code != ExitCode::Done || broker == nullptr) return checked;
  Context context{broker, arguments, false, true};
  return command->run(context);
}

ExitCode ReportBadStep(const AccountStep& step, const Outcome& outcome) {
  PrintError("lumenctl: line " + std::to_string(step.line) + ": " + outcome.message + "\n");
  return ExitCode::Usage;
}

std::string ResultColumn(HRESULT result) {
  return HexOfResult(result) + " " + std::string(NameOfResult(result));
}

ExitCode RunSteps(const ParsedAccount& account, ILumenBroker6* broker) {
  int number = 0;
  int different = 0;
  for (const AccountStep& step : account.steps) {
    if (!step.heading.empty()) {
      Print("\n" + step.heading + "\n");
      continue;
    }
    const Outcome outcome = RunStep(step, broker);
    if (outcome.code == ExitCode::Usage) return ReportBadStep(step, outcome);
    const bool fits = outcome.result == step.expected && outcome.code != ExitCode::LocalFile;
    std::string line = Padded(std::to_string(++number) + ".", 5) + Padded(step.description, 66) +
                       Padded(ResultColumn(outcome.result), 34) + (fits ? "ok" : "DIFFERS");
    if (!fits) {
      ++different;
      line += "\n     expected " + ResultColumn(step.expected);
      if (!outcome.message.empty()) line += "; " + outcome.message;
    }
    Print(line + "\n");
  }
  Print("\n" + std::to_string(number) + " steps, " + std::to_string(different) + " different\n");
  return different == 0 ? ExitCode::Done : ExitCode::Differs;
}

ExitCode RunAccount(const std::vector<std::string>& words) {
  if (words.size() != 1 || words[0] == "-h") {
    Print(
        "lumenctl run FILE\n\n  runs an account over one broker object\n\nEach line: RESULT DESCRIPTION :: COMMAND "
        "ARGUMENTS. Environment variables in arguments are expanded.\n\"== Heading\" is shown, \"#\" begins a "
        "comment.\n");
    return words.size() == 1 ? ExitCode::Done : ExitCode::Usage;
  }
  std::ifstream in(words[0], std::ios::binary);
  if (!in) {
    PrintError("lumenctl: cannot read " + words[0] + "\n");
    return ExitCode::LocalFile;
  }
  const std::string text(std::istreambuf_iterator<char>(in), {});
  const ParsedAccount account = ParseAccount(text);
  if (!account.error.empty()) {
    PrintError("lumenctl: " + words[0] + ": " + account.error + "\n");
    return ExitCode::Usage;
  }
  for (const AccountStep& step : account.steps) {
    const Outcome checked = step.heading.empty() ? RunStep(step, nullptr) : Outcome();
    if (checked.code == ExitCode::Usage) return ReportBadStep(step, checked);
  }
  ComPtr<ILumenBroker6> broker;
  const HRESULT activated = Activate(broker);
  if (FAILED(activated)) return ReportNoBroker(activated);
  return RunSteps(account, broker.Get());
}

}  // namespace

std::vector<const Command*> AllCommands() {
  std::vector<const Command*> all;
  for (const auto family : {FileCommands(), DirectoryCommands(), DialogCommands(), LcdCommands(), PrintCommands(),
                            ServiceCommands(), AddOnCommands()}) {
    for (const Command& command : family) all.push_back(&command);
  }
  return all;
}

const Command* FindCommand(const std::vector<std::string>& words, size_t& used) {
  const std::vector<const Command*> all = AllCommands();
  for (used = std::min<size_t>(words.size(), 3); used > 0; --used) {
    std::string name = words[0];
    for (size_t i = 1; i < used; ++i) name += " " + words[i];
    const auto found = std::find_if(all.begin(), all.end(), [&](const Command* c) { return c->name == name; });
    if (found != all.end()) return *found;
  }
  return nullptr;
}

BString TextArgument(const Context& context, size_t index) {
  return BString(WideView(FromUtf8(context.arguments.Positional()[index])));
}

void Print(std::string_view text) {
  DWORD written = 0;
  WriteFile(GetStdHandle(STD_OUTPUT_HANDLE), text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
}

void PrintError(std::string_view text) {
  DWORD written = 0;
  WriteFile(GetStdHandle(STD_ERROR_HANDLE), text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
}

ExitCode RunCommandLine(const std::vector<std::string>& words) {
  const bool wantsHelp = words.empty() || words[0] == "-h" || words[0] == "--help" || words[0] == "help";
  if (wantsHelp) {
    PrintUsage();
    return words.empty() ? ExitCode::Usage : ExitCode::Done;
  }
  if (words[0] == "run") return RunAccount({words.begin() + 1, words.end()});
  size_t used = 0;
  const Command* const command = FindCommand(words, used);
  const std::vector<std::string> rest(words.begin() + static_cast<std::ptrdiff_t>(used), words.end());
  if (command == nullptr) {
    PrintError("lumenctl: no such command: " + words[0] + "\nlumenctl -h lists them.\n");
    return ExitCode::Usage;
  }
  if (!rest.empty() && (rest[0] == "-h" || rest[0] == "--help")) {
    PrintHelp(*command);
    return ExitCode::Done;
  }
  return RunOne(*command, rest);
}
