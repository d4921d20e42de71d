// A participant of another make: plain Win32, written from the segment's layout alone, sharing no code with the
// product. Listens under a name, takes COUNT messages and checks that each sender's come once and in order.
//
//     PlainParticipant NAME COUNT
//     PlainParticipant NAME text      takes one message and prints what follows the name in it
//     PlainParticipant NAME hold      never lets go of the lock
//
// A message is 2, the name's length in two bytes, the name, then the sender's number and a 4-byte count.
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

constexpr DWORD kList = 40976;

// Takes the message if it is ours: its bytes behind the name, or null.
const unsigned char* Ours(unsigned char* segment, const char* name, DWORD* rest) {
  std::memcpy(rest, segment + 12, 4);
  const std::string head = std::string("\2\0", 2) + static_cast<char>(std::strlen(name)) + name;
  if (*rest < head.size() || *rest > 40960 || std::memcmp(segment + 16, head.data(), head.size()) != 0) return nullptr;
  *rest -= static_cast<DWORD>(head.size());
  std::memset(segment + 8, 0, 8);
  return segment + 16 + head.size();
}

// 1 taken, -1 out of order, 0 not ours. With `next` null the text is printed.
int Take(unsigned char* segment, const char* name, DWORD* next) {
  DWORD rest = 0, count = 0;
  const unsigned char* const content = Ours(segment, name, &rest);
  if (content == nullptr) return 0;
  if (next == nullptr) return std::printf("%.*s\n", static_cast<int>(rest), reinterpret_cast<const char*>(content)) > 0;
  if (rest < 5 || content[0] >= 4) return -1;
  std::memcpy(&count, content + 1, 4);
  return count == next[content[0]]++ ? 1 : -1;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return 9;
  const bool text = std::strcmp(argv[2], "text") == 0;
  const HANDLE mutex = CreateMutexA(nullptr, FALSE, "HalcyonicsMutexOmega");
  if (WaitForSingleObject(mutex, 30000) != WAIT_OBJECT_0) return 8;
  const HANDLE mapping =
      CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 64528, "HalcyonicsFMOmega");
  const bool first = GetLastError() != ERROR_ALREADY_EXISTS;
  auto* const segment = static_cast<unsigned char*>(MapViewOfFile(mapping, FILE_MAP_ALL_ACCESS, 0, 0, 64528));
  if (segment == nullptr) return 7;
  if (first) {
    std::memset(segment, 0, 16);
    segment[0] = segment[4] = 1;
    segment[kList] = 0;
  }
  unsigned char* at = segment + kList;
  while (*at != 0) at += std::strlen(reinterpret_cast<char*>(at)) + 1;
  std::memcpy(at, argv[1], std::strlen(argv[1]) + 1);  // no suffixes: format 1, every realm
  at[std::strlen(argv[1]) + 1] = 0;
  const bool holds = std::strcmp(argv[2], "hold") == 0;
  if (!holds) ReleaseMutex(mutex);
  SetEvent(CreateEventA(nullptr, TRUE, FALSE, argv[1]));
  if (holds) Sleep(60000);  // until it is killed

  DWORD next[4] = {};
  const DWORD begin = GetTickCount();
  for (int wanted = text ? 1 : std::atoi(argv[2]); wanted > 0;) {
    if (GetTickCount() - begin > 60000) return 6;
    if (WaitForSingleObject(mutex, 30000) != WAIT_OBJECT_0) return 8;
    const int taken = Take(segment, argv[1], text ? nullptr : next);
    ReleaseMutex(mutex);
    if (taken < 0) return 5;
    wanted -= taken;
    if (taken == 0) SwitchToThread();
  }
  return 0;
}
