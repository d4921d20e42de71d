// Access lists in the platform's own notation.
#pragma once

#include <windows.h>

#include <sddl.h>

#include <set>
#include <string>

// The entries of "D:(A;;FA;;;BA)(D;;DC;;;BU)". Where a new one goes is the platform's business.
inline std::multiset<std::string> AccessEntries(const std::string& text) {
  std::multiset<std::string> entries;
  for (size_t at = text.find('('); at != std::string::npos; at = text.find('(', at + 1)) {
    entries.insert(text.substr(at, text.find(')', at) - at + 1));
  }
  return entries;
}

inline std::string AccessText(PSECURITY_DESCRIPTOR descriptor) {
  char* text = nullptr;
  ConvertSecurityDescriptorToStringSecurityDescriptorA(descriptor, 1, DACL_SECURITY_INFORMATION, &text, nullptr);
  const std::string whole = text == nullptr ? "" : text;
  LocalFree(text);
  return whole;
}
