#include "host/CommandLine.h"

#include <algorithm>
#include <iterator>

#include "engine/ProductKind.h"
#include "host/Languages.h"

namespace {

enum class Words : uint8_t { None, Kind, Kinds, Language };  // what follows a command

struct CommandRow {
  std::string_view word;
  HostCommand command;
  Words words;
  bool changesPlayers;       // takes -silent, -console and -what-if
  std::string_view summary;  // empty: another word for a command that has a row of its own
};
constexpr CommandRow kCommands[] = {
    {"install", HostCommand::Install, Words::Kinds, true, "installs players from the payload beside this program"},
    {"uninstall", HostCommand::Uninstall, Words::Kinds, true, "removes players"},
    {"maintain", HostCommand::Maintain, Words::Kind, true, "reinstalls or removes one player, as asked"},
    {"update", HostCommand::Update, Words::Kind, true, "installs one player over the older one that is there"},
    {"check", HostCommand::Check, Words::Kind, false, "tells whether an update of one player is waiting"},
    {"conflicts", HostCommand::Conflicts, Words::Kinds, false, "names the running programs that use players"},
    {"status", HostCommand::Status, Words::None, false, "shows what is installed, as a table"},
    {"gallery", HostCommand::Gallery, Words::Language, false, "shows every control of the installer's window"},
    {"register", HostCommand::Register, Words::Kind, false, "registers the broker at this program's path"},
    {"unregister", HostCommand::Unregister, Words::Kind, false, "takes that registration away"},
    {"refreshIEElevationPolicies", HostCommand::RefreshPolicies, Words::None, false,
     "asks the browser to read its policies again"},
    {"Embedding", HostCommand::Broker, Words::None, false, "runs the broker; COM starts this program so"},
    {"help", HostCommand::Help, Words::None, false, "this text"},
    {"h", HostCommand::Help, Words::None, false, ""},
    {"?", HostCommand::Help, Words::None, false, ""},
};

struct KindRow {
  std::string_view word;
  std::string_view name;
  uint32_t kind;
};
constexpr KindRow kKinds[] = {
    {"activex", "ActiveX", product_kind::ActiveX},
    {"plugin", "NPAPI", product_kind::Plugin},
    {"pepperplugin", "PPAPI", product_kind::Pepper},
};

// In the order of Words.
constexpr const char* kPlaceholders[] = {"", " KIND", " KIND...", " [LANGUAGE]"};
constexpr size_t kSummaryColumn = 32;

char Lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}

bool SameWord(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return Lower(x) == Lower(y); });
}

const CommandRow* FindCommand(std::string_view option) {
  const auto row = std::find_if(std::begin(kCommands), std::end(kCommands),
                                [&](const CommandRow& candidate) { return SameWord(candidate.word, option); });
  return row == std::end(kCommands) ? nullptr : row;
}

const KindRow* FindKind(uint32_t kind) {
  const auto row = std::find_if(std::begin(kKinds), std::end(kKinds),
                                [kind](const KindRow& candidate) { return candidate.kind == kind; });
  return row == std::end(kKinds) ? nullptr : row;
}

// The word without its dash or slash; empty when it is no option.
std::string_view OptionOf(std::string_view word) {
  const bool isOption = word.size() > 1 && (word[0] == '-' || word[0] == '/');
  return isOption ? word.substr(1) : std::string_view();
}

class Reader {
 public:
  explicit Reader(const std::vector<std::string>& all) : words(all) {}

  HostCommandLine Read() {
    while (next < words.size() && line.error.empty()) ReadOne();
    if (line.error.empty() && (line.silent || line.console || line.whatIf) &&
        (chosen == nullptr || !chosen->changesPlayers)) {
      line.error = "-silent, -console and -what-if go with commands that change players";
    }
    if (chosen == nullptr) line.command = HostCommand::Install;
    return line;
  }

 private:
  void ReadOne() {
    const std::string& word = words[next++];
    const std::string_view option = OptionOf(word);
    if (SameWord(option, "log")) {
      ReadLog();
    } else if (SameWord(option, "silent")) {
      line.silent = true;
    } else if (SameWord(option, "console")) {
      line.console = true;
    } else if (SameWord(option, "what-if")) {
      line.whatIf = true;
    } else if (SameWord(option, "language")) {
      ReadLanguage();
      if (line.language == 0) line.error = word + " wants a language";
    } else if (const CommandRow* const row = FindCommand(option)) {
      ReadCommand(*row, word);
    } else {
      line.error = "not understood: " + word;
    }
  }

  void ReadLog() {
    if (next == words.size() || words[next].empty()) {
      line.error = "-log wants a file";
    } else {
      line.logFile = words[next++];
    }
  }

  void ReadCommand(const CommandRow& row, const std::string& word) {
    if (chosen != nullptr) {
      line.error = "one command only: " + word;
      return;
    }
    chosen = &row;
    line.command = row.command;
    switch (row.words) {
      case Words::None: break;
      case Words::Kind: ReadKinds(false, word); break;
      case Words::Kinds: ReadKinds(true, word); break;
      case Words::Language: ReadLanguage(); break;
    }
  }

  void ReadKinds(bool several, const std::string& word) {
    do {
      const auto kind = next < words.size() ? KindOfWord(words[next]) : std::nullopt;
      if (!kind) break;
      line.kinds |= *kind;
      ++next;
    } while (several);
    if (line.kinds == 0) line.error = word + " wants activex, plugin or pepperplugin";
  }

  // It may be left out.
  void ReadLanguage() {
    const auto language = next < words.size() ? LanguageOfWord(words[next]) : std::nullopt;
    if (!language) return;
    line.language = *language;
    ++next;
  }

  const std::vector<std::string>& words;
  size_t next = 0;
  const CommandRow* chosen = nullptr;
  HostCommandLine line;
};

}  // namespace

bool HostCommandLine::InWindow() const {
  const bool hasPanel = command == HostCommand::Install || command == HostCommand::Uninstall ||
                        command == HostCommand::Maintain || command == HostCommand::Update;
  return hasPanel && !silent && !console && !whatIf;
}

std::optional<uint32_t> KindOfWord(std::string_view word) {
  for (const KindRow& row : kKinds) {
    if (SameWord(row.word, word)) return row.kind;
  }
  return std::nullopt;
}

std::string_view WordOfKind(uint32_t kind) {
  const KindRow* const row = FindKind(kind);
  return row == nullptr ? std::string_view() : row->word;
}

std::string_view NameOfKind(uint32_t kind) {
  const KindRow* const row = FindKind(kind);
  return row == nullptr ? std::string_view() : row->name;
}

std::vector<uint32_t> EachKind(uint32_t kinds) {
  std::vector<uint32_t> each;
  for (const KindRow& row : kKinds) {
    if ((kinds & row.kind) != 0) each.push_back(row.kind);
  }
  return each;
}

HostCommandLine ParseHostCommandLine(const std::vector<std::string>& words) {
  return Reader(words).Read();
}

std::string HostUsage() {
  std::string text =
      "LumenHost [COMMAND] [-language LANGUAGE] [-log FILE]\n\n"
      "Without a command the installer's window opens for the players of the payload.\n\n";
  for (const CommandRow& row : kCommands) {
    if (row.summary.empty()) continue;
    std::string line = "  -" + std::string(row.word);
    line += kPlaceholders[static_cast<size_t>(row.words)];
    line.resize(std::max(line.size() + 1, kSummaryColumn), ' ');
    text += line + std::string(row.summary) + "\n";
  }
  return text +
         "\nKIND is activex, plugin or pepperplugin.\n"
         "LANGUAGE is cs, de, en, es, fr, it, ja, ko, nl, pl, pt-BR, ru, sv, tr, zh-CN or\n"
         "zh-TW, or its number, as 1031; without it, the user's own.\n"
         "-install, -uninstall, -maintain and -update open a window. With -silent nothing\n"
         "is asked and no progress shown, with -console both are on the console, and\n"
         "-what-if tells what would change and changes nothing.\n"
         "-log FILE appends one line for each report: time, severity, code, text, meaning.\n"
         "What changes the machine wants administrative rights.\n\n"
         "Exit codes: 0 done, 1 failed, 2 not understood, 3 the module cannot be loaded,\n"
         "4 the log or the settings cannot be read, 5 done but for a restart, 6 refused,\n"
         "7 programs are in the way, 1039 the window was left before anything was done.\n"
         "With -Embedding: the broker's own.\n";
}
