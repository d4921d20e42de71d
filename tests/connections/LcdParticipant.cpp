// A process of its own that takes part through the product's accessor.
//
//     LcdParticipant send NUMBER COUNT NAME...  sends COUNT messages, to the names in turn
//     LcdParticipant hold EVENT                 takes the lock, sets the event and never lets go
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

int Hold(const char* event) {
  Win32LcdAccessor directory;
  if (directory.Lock() != 1) return 2;
  const KernelHandle held(CreateEventA(nullptr, TRUE, FALSE, event));
  SetEvent(held.Get());
  Sleep(kPatience);  // until it is killed
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string role = argc > 2 ? argv[1] : "";
  if (role == "hold") return Hold(argv[2]);
  if (role == "send" && argc > 4)
    return Send(static_cast<uint8_t>(std::atoi(argv[2])), std::atoi(argv[3]), {argv + 4, argv + argc});
  return 9;
}
