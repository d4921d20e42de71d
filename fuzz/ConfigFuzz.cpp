// hms.cfg is an administrator's file; whatever it holds, looking a key up gives a trimmed value or nothing.
#include <string_view>

#include "engine/SystemConfigFile.h"
#include "fuzz/Require.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const SystemConfigFile file({text.data(), text.size()});
  for (const std::string_view key : {std::string_view("EnableLocalAppData"), text.substr(0, size / 3)}) {
    const std::string_view value = file.Lookup(key);
    const auto isBlank = [](char c) { return static_cast<signed char>(c) <= 32; };
    Require(value.empty() || (!isBlank(value.front()) && !isBlank(value.back())));
    (void)IsTrueSetting(value);
  }
  return 0;
}
