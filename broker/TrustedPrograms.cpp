#include "broker/TrustedPrograms.h"

#include <algorithm>

namespace {

constexpr WideView kBrowsers[] = {L"microsoftedge.exe", L"microsoftedgecp.exe", L"spartan.exe", L"spartan_edge.exe"};

WideString Lower(WideView text) {
  WideString lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(), ToLowerAscii);
  return lower;
}

}  // namespace

bool IsTrustedProgram(WideView image, std::span<const WideString> roots) {
  const WideString lowered = Lower(image);
  for (const WideString& root : roots) {
    // The root must end where a component ends: "C:\Program Files Too" is no part of "C:\Program Files".
    if (!root.empty() && lowered.starts_with(Lower(root)) && lowered.size() > root.size() &&
        lowered[root.size()] == L'\\') {
      return true;
    }
  }
  const size_t slash = lowered.rfind(L'\\');
  const WideView name = WideView(lowered).substr(slash == WideString::npos ? 0 : slash + 1);
  return std::find(std::begin(kBrowsers), std::end(kBrowsers), name) != std::end(kBrowsers);
}
