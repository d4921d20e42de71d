// A process of its own that takes part through the product's accessor.
//
//     LcdParticipant NUMBER COUNT NAME...  sends COUNT messages, to the names in turn
#include <windows.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "connections/Win32LcdAccessor.h"

namespace {

constexpr DWORD kPatience = 60000;

int Send(uint8_t number, int count, const std::vector<std::string>& names) {
  Win32LcdAccessor directory;
  const DWORD begin = GetTickCount();
  for (int sent = 0; sent < count;) {
    if (GetTickCount() - begin > kPatience) return 6;
    const auto all = static_cast<int>(names.size());
    const std::string& to = names[static_cast<size_t>(sent % all)];
    const int32_t next = sent / all;
    std::string message = std::string("\2\0", 2) + static_cast<char>(to.size()) + to + static_cast<char>(number);
    message.append(reinterpret_cast<const char*>(&next), 4);
    const LcdDispatch outcome = directory.DispatchMessage(reinterpret_cast<const uint8_t*>(message.data()),
                                                          static_cast<int32_t>(message.size()), 8, 1, 0);
    if (outcome == LcdDispatch::Refused) return 7;
    if (outcome == LcdDispatch::Posted)
      ++sent;
    else
      SwitchToThread();
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 4) return 9;
  return Send(static_cast<uint8_t>(std::atoi(argv[1])), std::atoi(argv[2]), {argv + 3, argv + argc});
}
