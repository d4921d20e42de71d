// Activates the broker and runs commands and accounts on it.
#pragma once

#include <string>
#include <vector>

#include "client/Command.h"

// Runs one command line, without the program's name. The exit code.
[[nodiscard]] ExitCode RunCommandLine(const std::vector<std::string>& words);
