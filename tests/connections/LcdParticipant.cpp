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
  std::vector<uint32_t> next(names.size());
  const DWORD begin = GetTickCount();
  for (int sent = 0; sent < count;) {
    if (GetTickCount() - begin > kPatience) return 6;
    const size_t to = static_cast<size_t>(sent) % names.size();
    std::vector<uint8_t> message = {2, 0, static_cast<uint8_t>(names[to].size())};
    message.insert(message.end(), names[to].begin(), names[to].end());
    message.push_back(number);
    for (int shift = 0; shift < 32; shift += 8) message.push_back(static_cast<uint8_t>(next[to] >> shift));
    const LcdDispatch outcome =
        directory.DispatchMessage(message.data(), static_cast<int32_t>(message.size()), 8, 1, 0);
    if (outcome == LcdDispatch::Refused) return 7;
    if (outcome == LcdDispatch::Posted) {
      ++next[to];
      ++sent;
    } else {
      SwitchToThread();
    }
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
