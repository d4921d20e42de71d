#include "client/AddOnTexts.h"

#include <cstdio>

#include "delivery/ProductName.h"

namespace {

constexpr uint64_t kBarWidth = 24;

std::string SizeText(uint32_t bytes) {
  char text[32] = {};
  if (bytes < 1024) {
    std::snprintf(text, sizeof(text), "%u bytes", bytes);
  } else if (bytes < 1024 * 1024) {
    std::snprintf(text, sizeof(text), "%.1f KiB", bytes / 1024.0);
  } else {
    std::snprintf(text, sizeof(text), "%.1f MiB", bytes / (1024.0 * 1024.0));
  }
  return text;
}

}  // namespace

std::string CheckProductName(std::string_view name) {
  return IsPlainProductName(name) ? "" : "a product's name is 1 to 31 letters and digits";
}

std::string CheckDownloadUrl(std::string_view url) {
  const bool known = url.starts_with("http://") || url.starts_with("https://");
  return known ? "" : "an address begins with http:// or https://";
}

std::string DigestUrlBeside(std::string_view packageUrl) {
  const std::string_view path = packageUrl.substr(0, packageUrl.find_first_of("?#"));
  return std::string(path.substr(0, path.find_last_of('/') + 1)) + "digest.s";
}

std::string ProgressLine(std::string_view label, uint32_t done, uint32_t total) {
  const uint64_t filled = total == 0 ? kBarWidth : kBarWidth * done / total;
  const unsigned percent = total == 0 ? 100 : static_cast<unsigned>(100ULL * done / total);
  std::string line(label);
  line.append(line.size() < 9 ? 9 - line.size() : 1, ' ');
  line += "[" + std::string(filled, '#') + std::string(kBarWidth - filled, '-') + "] ";
  char text[8] = {};
  std::snprintf(text, sizeof(text), "%3u%%  ", percent);
  return line + text + SizeText(done) + " of " + SizeText(total);
}

std::string_view DescribeStoreResult(uint32_t code) {
  switch (code) {
    case 0: return "stored";
    case 3: return "not stored: it does not unpack, or its file cannot be written";
    case 4: return "not stored: no memory";
    case 5: return "not stored: the download holds no data";
    case 6: return "not stored: its signature is not trusted";
    default: return "not stored: unknown result";
  }
}

std::string VersionText(uint32_t mostSignificant, uint32_t leastSignificant) {
  std::string text;
  for (const uint32_t word : {mostSignificant, leastSignificant}) {
    text += (text.empty() ? "" : ".") + std::to_string(word >> 16) + "." + std::to_string(word & 0xFFFF);
  }
  return text;
}
