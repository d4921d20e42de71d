#include "host/ConsoleText.h"

#include <algorithm>
#include <cstdio>

namespace {

constexpr uint64_t kBarWidth = 30;

}  // namespace

WideString WithoutMarks(WideView text) {
  WideString plain;
  while (!text.empty()) {
    const size_t open = text.find(L'<');
    plain += text.substr(0, open);
    if (open == WideView::npos) break;
    text.remove_prefix(open);
    if (text.substr(0, 3) == L"<br" && !plain.empty() && plain.back() != L'\n') plain.push_back(L'\n');
    const size_t close = text.find(L'>');
    if (close == WideView::npos) break;
    text.remove_prefix(close + 1);
  }
  return plain;
}

std::string ProgressLine(uint64_t done, uint64_t total, const std::string& name) {
  // A payload of any size: the large numbers are divided first.
  const bool large = total > UINT64_MAX / 1000;
  const uint64_t part = total == 0 ? 1000 : large ? done / (total / 1000) : done * 1000 / total;
  const uint64_t thousandths = done >= total ? 1000 : std::min<uint64_t>(part, 999);
  const uint64_t filled = thousandths * kBarWidth / 1000;
  char percent[8];
  std::snprintf(percent, sizeof(percent), "%3u%%", static_cast<unsigned>(thousandths / 10));
  return "[" + std::string(filled, '#') + std::string(kBarWidth - filled, ' ') + "] " + percent + "  " + name;
}
