// A process of its own that takes part through the product's accessor.
//
//     LcdParticipant receive NAME COUNT        listens, takes COUNT messages, checks that each sender's come once and
//     in order LcdParticipant send NUMBER COUNT NAME...  sends COUNT messages, to the names in turn LcdParticipant hold
//     EVENT                takes the lock, sets the event and never lets go
#include <windows.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "connections/Win32LcdAccessor.h"

namespace {

constexpr DWORD kPatience = 60000;

void Signal(const char* name) {
  const KernelHandle event(CreateEventA(nullptr, TRUE, FALSE, name));
  SetEvent(event.Get());
}

// 1 taken in order, -1 out of order, 0 nothing for us.
int Take(Win32LcdAccessor& directory, const std::string& name, uint32_t* next) {
  if (directory.Lock() < 1) return -1;
  int taken = 0;
  char target[1024];
  const uint8_t* data = nullptr;
  int32_t size = 0;
  if (directory.GetMessageTarget(target, sizeof(target)) && name == target && directory.GetMessageData(&data, &size)) {
    const uint8_t sender = data[3 + name.size()];
    uint32_t count = 0;
    std::memcpy(&count, data + 4 + name.size(), 4);
    taken = sender < 4 && count == next[sender]++ ? 1 : -1;
    directory.ClearMessage();
  }
  directory.Unlock();
  return taken;
}

int Receive(const std::string& name, int wanted) {
  Win32LcdAccessor directory;
  if (!directory.TryAddConnection(name.c_str(), 0, 0, '1')) return 4;
  Signal(name.c_str());
  uint32_t next[4] = {};
  for (const DWORD begin = GetTickCount(); wanted > 0;) {
    if (GetTickCount() - begin > kPatience) return 6;
    const int taken = Take(directory, name, next);
    if (taken < 0) return 5;
    wanted -= taken;
    if (taken == 0) SwitchToThread();
  }
  return directory.RemoveConnection(name.c_str(), 0) ? 0 : 3;
}

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
  Signal(event);
  Sleep(kPatience);  // until it is killed
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string role = argc > 2 ? argv[1] : "";
  if (role == "receive" && argc == 4) return Receive(argv[2], std::atoi(argv[3]));
  if (role == "hold") return Hold(argv[2]);
  if (role == "send" && argc > 4)
    return Send(static_cast<uint8_t>(std::atoi(argv[2])), std::atoi(argv[3]), {argv + 4, argv + argc});
  return 9;
}
