#include <windows.h>

#include <exception>
#include <string>
#include <vector>

#include "client/Runner.h"

int wmain(int count, wchar_t** words) {
  SetConsoleOutputCP(CP_UTF8);
  const ComInitializer com;
  if (!com.Succeeded()) return static_cast<int>(ExitCode::NoBroker);
  try {
    std::vector<std::string> arguments;
    for (int i = 1; i < count; ++i) arguments.push_back(ToUtf8(words[i]));
    return static_cast<int>(RunCommandLine(arguments));
  } catch (const std::exception& failure) {
    PrintError(std::string("lumenctl: ") + failure.what() + "\n");
    return static_cast<int>(ExitCode::Refused);
  }
}
