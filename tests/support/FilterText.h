// The file filters of a call as clients send them.
#pragma once

#include <string>

#include "engine/WideText.h"

// The bytes of a text with its terminator.
inline std::string FilterBytes(WideView text) {
  const WideString terminated(text);
  const auto* const bytes = reinterpret_cast<const char*>(terminated.c_str());
  return {bytes, (terminated.size() + 1) * sizeof(wchar_t)};
}
