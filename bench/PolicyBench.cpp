// Judging a path with warm roots, beside one upper-casing of the same path. The in-memory platform answers without work
// of its own where it can, so what is measured is the logic.
#include <vector>

#include "bench/BenchSupport.h"
#include "broker/BrokerPathPolicy.h"

namespace {

// Answers at once: every path is full already, every directory plain.
class QuickPlatform final : public PathOperations {
 public:
  std::optional<WideString> FullPath(WideView path) override { return WideString(path); }
  std::optional<WideString> UpperCase(WideView text) override {
    WideString upper(text);
    for (wchar_t& unit : upper) unit = ToUpperAscii(unit);
    return upper;
  }
  std::optional<uint32_t> Attributes(WideView /*path*/) override { return kAttributeDirectory; }
  std::optional<uint32_t> AttributesEx(WideView /*path*/) override { return kAttributeDirectory; }
  std::optional<WideString> LongPath(WideView /*path*/) override { return std::nullopt; }
  std::optional<WideString> ObjectLinkTarget(WideView /*path*/) override { return std::nullopt; }
  std::optional<std::vector<uint8_t>> ReadReparsePoint(WideView /*path*/) override { return std::nullopt; }
  std::optional<WideString> Folder(ShellFolder /*folder*/) override { return L"C:\\Users\\A\\AppData\\Roaming"; }
  std::optional<WideString> TempPath() override { return L"C:\\Users\\A\\AppData\\Local\\Temp\\"; }
};

}  // namespace

int main() {
  QuickPlatform platform;
  BrokerPathPolicy policy(platform, true);
  const WideString path =
      L"C:\\Users\\A\\AppData\\Roaming\\Halcyonics\\Lumen Player\\#SharedObjects\\QX7\\site\\game.sol";
  const double floor = Nanoseconds(20, 20000, [&] { Keep(platform.UpperCase(path)); });
  const double judged = Nanoseconds(20, 20000, [&] { Keep(policy.IsWritableDataPath(path.c_str(), true, nullptr)); });
  std::printf("IsWritableDataPath        %8.0f ns     upper-casing %8.0f ns     ratio %.1f\n", judged, floor,
              judged / floor);
}
