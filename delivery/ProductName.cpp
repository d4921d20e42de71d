#include "delivery/ProductName.h"

#include <algorithm>

#include "engine/WideText.h"

namespace {

constexpr size_t kLongestName = 31;

// Bytes above 127 never count, whatever the C library's locale says of them.
bool IsLetterOrDigit(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

}  // namespace

bool IsPlainProductName(std::string_view name) {
  return !name.empty() && name.size() <= kLongestName && std::all_of(name.begin(), name.end(), IsLetterOrDigit);
}

#ifdef _WIN32
bool IsValidProductName(const wchar_t* name) {
  return name != nullptr && IsPlainProductName(NarrowToCodePage(name));
}
#endif
