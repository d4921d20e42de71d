#include "host/CommandLine.h"

#include <algorithm>

#include "engine/ProductKind.h"
#include "host/Languages.h"

namespace {

struct CommandRow {
  std::string_view word;
  HostCommand command;
  bool takesKind;
};
constexpr CommandRow kCommands[] = {
    {"embedding", HostCommand::Broker, false},
    {"register", HostCommand::Register, true},
    {"unregister", HostCommand::Unregister, true},
    {"refreshieelevationpolicies", HostCommand::RefreshPolicies, false},
    {"gallery", HostCommand::Gallery, false},
    {"help", HostCommand::Help, false},
    {"h", HostCommand::Help, false},
    {"?", HostCommand::Help, false},
};

struct KindRow {
  std::string_view word;
  unsigned kind;
};
constexpr KindRow kKinds[] = {
    {"activex", product_kind::ActiveX},
    {"plugin", product_kind::Plugin},
    {"pepperplugin", product_kind::Pepper},
};

std::string Lower(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
  return lower;
}

const CommandRow* FindCommand(std::string_view option) {
  const auto row = std::find_if(std::begin(kCommands), std::end(kCommands),
                                [&](const CommandRow& candidate) { return candidate.word == option; });
  return row == std::end(kCommands) ? nullptr : row;
}

}  // namespace

std::optional<unsigned> KindOfWord(std::string_view word) {
  const std::string lower = Lower(word);
  for (const KindRow& row : kKinds) {
    if (row.word == lower) return row.kind;
  }
  return std::nullopt;
}

HostCommandLine ParseHostCommandLine(const std::vector<std::string>& words) {
  HostCommandLine line;
  const CommandRow* chosen = nullptr;
  for (size_t i = 0; i < words.size() && line.error.empty(); ++i) {
    const std::string& word = words[i];
    const bool isOption = word.size() > 1 && (word[0] == '-' || word[0] == '/');
    const std::string option = isOption ? Lower(std::string_view(word).substr(1)) : "";
    if (option == "log") {
      if (++i < words.size())
        line.logFile = words[i];
      else
        line.error = "-log wants a file";
    } else if (const CommandRow* const row = isOption ? FindCommand(option) : nullptr) {
      if (chosen != nullptr) line.error = "one command only: " + word;
      chosen = row;
      line.command = row->command;
      if (row->command == HostCommand::Gallery) {
        const auto language = i + 1 < words.size() ? LanguageOfTag(words[i + 1]) : std::nullopt;
        line.language = language.value_or(0);
        if (language) ++i;
      }
      if (!row->takesKind) continue;
      if (++i < words.size() && KindOfWord(words[i]))
        line.kind = Lower(words[i]);
      else
        line.error = word + " wants activex, plugin or pepperplugin";
    } else {
      line.error = "not understood: " + word;
    }
  }
  return line;
}

std::string_view HostUsage() {
  return "LumenHost COMMAND [-log FILE]\n\n"
         "  -register KIND                registers the broker at this program's path\n"
         "  -unregister KIND              takes that registration away\n"
         "  -refreshIEElevationPolicies   asks the browser to read its policies again\n"
         "  -Embedding                    runs the broker; COM starts this program so\n"
         "  -gallery [LANGUAGE]           shows every control of the installer's window\n"
         "  -help                         this text\n\n"
         "KIND is activex, plugin or pepperplugin; only activex has a broker.\n"
         "LANGUAGE is cs, de, en, es, fr, it, ja, ko, nl, pl, pt-BR, ru, sv, tr, zh-CN or\n"
         "zh-TW; without it, the user's own.\n"
         "-log FILE appends one line for each report.\n\n"
         "Exit codes: 0 done, 1 failed, 2 not understood, 3 the module cannot be loaded,\n"
         "4 the log or the settings cannot be read. With -Embedding: the broker's own.\n";
}
