#include <windows.h>

#include "engine/WideText.h"

std::string NarrowToCodePage(WideView text) {
  const auto units = static_cast<int>(text.size());
  const int length = WideCharToMultiByte(CP_ACP, 0, text.data(), units, nullptr, 0, nullptr, nullptr);
  std::string narrow(static_cast<size_t>(length), '\0');
  WideCharToMultiByte(CP_ACP, 0, text.data(), units, narrow.data(), length, nullptr, nullptr);
  return narrow;
}

WideString WidenFromCodePage(std::string_view text) {
  const auto bytes = static_cast<int>(text.size());
  const int length = MultiByteToWideChar(CP_ACP, 0, text.data(), bytes, nullptr, 0);
  WideString wide(static_cast<size_t>(length), L'\0');
  MultiByteToWideChar(CP_ACP, 0, text.data(), bytes, wide.data(), length);
  return wide;
}
