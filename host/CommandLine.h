// The host's command line: one command, its words and the options that go with any of them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

enum class HostCommand { Help, Broker, Register, Unregister, RefreshPolicies, Gallery };

struct HostCommandLine {
  HostCommand command = HostCommand::Help;
  std::string kind;       // "activex", "plugin" or "pepperplugin", for the commands that take one
  uint32_t language = 0;  // of -gallery, a platform identifier; 0 for the user's own
  std::string logFile;    // -log FILE; empty for none
  std::string error;      // not empty: the line was not understood, and this says why
};

// `words` without the program's name. Options may begin with "-" or "/", and letters count in either case, as COM and
// administrators write them.
[[nodiscard]] HostCommandLine ParseHostCommandLine(const std::vector<std::string>& words);
// The product kind of a word; nothing for another word.
[[nodiscard]] std::optional<unsigned> KindOfWord(std::string_view word);
[[nodiscard]] std::string_view HostUsage();
