// A hostile page's address: whatever passes is one plain label below the vendor's domain, and nothing of it is lost.
#include <string_view>

#include "delivery/ProductUrl.h"
#include "engine/Vendor.h"
#include "fuzz/Require.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string url(reinterpret_cast<const char*>(data), size);
  std::string host, path;
  bool secure = false;
  if (!ParseProductUrl(url.c_str(), host, path, secure)) {
    Require(host.empty() && path.empty());
    return 0;
  }
  constexpr std::string_view kSuffix = LUMEN_VENDOR_URL_SUFFIX;
  const size_t label = host.find('.');
  Require(label >= 1 && label <= 32);
  Require(host.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789-") == label);
  Require(host.substr(label) == kSuffix.substr(0, kSuffix.size() - 1));
  Require(path.starts_with('/'));
  const char* const read = url.c_str();  // the parser stops at the first terminator
  Require((secure ? "https://" : "http://") + host + path == read);
  return 0;
}
