// What 64 KiB through the broker costs beside a call that carries nothing: both are the same round trip between two
// processes, so the ratio is what reading and marshalling the bytes adds.
#include <windows.h>

#include <shlobj.h>

#include <cstdio>
#include <vector>

#include "bench/CallTiming.h"
#include "tests/support/BrokerProcess.h"

namespace {

constexpr ULONG kBlock = 65536;
constexpr int kRounds = 300;

// A file in the player's directory of one block a round; removed again at the end.
class PlayerFile {
 public:
  PlayerFile() {
    wchar_t roaming[MAX_PATH] = {};
    (void)SHGetFolderPathW(nullptr, CSIDL_APPDATA, nullptr, 0, roaming);
    const WideString directory = WideString(roaming) + L"\\Halcyonics\\Lumen Player";
    SHCreateDirectoryExW(nullptr, directory.c_str(), nullptr);
    path = directory + L"\\benchmark.dat";
    const FileHandle file(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    const std::vector<char> block(kBlock, 'x');
    for (int i = 0; i < kRounds; ++i) {
      DWORD written = 0;
      ready = WriteFile(file.Get(), block.data(), kBlock, &written, nullptr) && written == kBlock;
    }
  }
  PlayerFile(const PlayerFile&) = delete;
  PlayerFile& operator=(const PlayerFile&) = delete;
  ~PlayerFile() { DeleteFileW(path.c_str()); }

  WideString path;
  bool ready = false;
};

// One whole block read, or false.
bool ReadBlock(ILumenBroker6* broker, ULONG cookie) {
  ULONG read = 0;
  SAFEARRAY* data = nullptr;
  const HRESULT result = broker->BrokerReadFile(cookie, kBlock, &read, &data);
  const bool whole = result == S_OK && read == kBlock && data != nullptr && data->rgsabound[0].cElements == kBlock;
  SafeArrayDestroy(data);
  return whole;
}

int Run(ILumenBroker6* broker) {
  const PlayerFile file;
  ULONG cookie = 0;
  if (!file.ready || broker->BrokerCreateFile(BString(file.path.c_str()).Get(), TRUE, FALSE, &cookie) != S_OK) {
    std::fprintf(stderr, "broker_call_bench: the file cannot be opened through the broker\n");
    return 1;
  }
  std::vector<double> reads;
  std::vector<double> empties;
  bool whole = true;
  // Taken in turns, so that whatever else the machine does meets both.
  for (int i = 0; i < kRounds; ++i) {
    empties.push_back(Timed([&] { whole = broker->BrokerFindClose(0) == E_INVALIDARG && whole; }));
    reads.push_back(Timed([&] { whole = ReadBlock(broker, cookie) && whole; }));
  }
  (void)broker->BrokerCloseHandle(cookie);
  if (!whole) {
    std::fprintf(stderr, "broker_call_bench: a call did not do what it should\n");
    return 1;
  }
  const double read = Median(reads);
  const double empty = Median(empties);
  std::printf("broker call          read 64 KiB %8.1f us   empty call %8.1f us   ratio %5.2f\n", read, empty,
              read / empty);
  return 0;
}

}  // namespace

int main() {
  const ComInitializer apartment;
  ComPtr<ILumenBroker6> broker;
  const HRESULT activated = broker_process::Activate(broker);
  if (FAILED(activated)) {
    std::fprintf(stderr, "broker_call_bench: no broker, 0x%08lx\n", static_cast<unsigned long>(activated));
    return 1;
  }
  return Run(broker.Get());
}
