// hms.cfg is an administrator's file; whatever it holds, looking a key up gives a trimmed value or nothing.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "engine/SystemConfigFile.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const SystemConfigFile file({text.data(), text.size()});
  for (const std::string_view key : {std::string_view("EnableLocalAppData"), text.substr(0, size / 3)}) {
    const std::string_view value = file.Lookup(key);
    if (!value.empty() &&
        (static_cast<signed char>(value.front()) <= 32 || static_cast<signed char>(value.back()) <= 32)) {
      __builtin_trap();
    }
    (void)IsTrueSetting(value);
  }
  return 0;
}
