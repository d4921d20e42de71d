#include "delivery/ProductUrl.h"

#include <string_view>

#include "engine/Vendor.h"

namespace {

constexpr std::string_view kDomain = LUMEN_VENDOR_URL_SUFFIX;  // with its leading dot and its last slash
constexpr size_t kShortestUrl = 8;
constexpr size_t kLongestLabel = 32;

bool IsLabelByte(char c) {
  return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-';
}

}  // namespace

bool ParseProductUrl(const char* url, std::string& host, std::string& path, bool& secure) {
  host.clear();
  path.clear();
  secure = false;
  if (url == nullptr) return false;
  std::string_view rest(url);
  if (rest.size() < kShortestUrl) return false;
  if (rest.starts_with("http://")) {
    rest.remove_prefix(7);
  } else if (rest.starts_with("https://")) {
    rest.remove_prefix(8);
    secure = true;
  } else {
    return false;
  }

  size_t length = 0;
  while (length < rest.size() && IsLabelByte(rest[length])) ++length;
  if (length == 0 || length > kLongestLabel || !rest.substr(length).starts_with(kDomain)) return false;
  const size_t slash = length + kDomain.size() - 1;
  host = rest.substr(0, slash);
  path = rest.substr(slash);
  return true;
}
