#include "install/UniqueFileName.h"

#include <algorithm>
#include <string>
#include <utility>

#include "engine/WideText.h"

namespace {

bool Append(wchar_t* buffer, size_t capacity, WideView text) {
  const size_t length = WideTraits::length(buffer);
  if (length + text.size() >= capacity) return false;
  WideTraits::copy(buffer + length, text.data(), text.size());
  buffer[length + text.size()] = 0;
  return true;
}

WideString NumberedEnding(unsigned number, WideView extension) {
  return WidenAscii(" (" + std::to_string(number) + ")") + WideString(extension);
}

}  // namespace

wchar_t* MakeUniqueFileName(wchar_t* buffer, size_t capacity, const wchar_t* name, const wchar_t* extension,
                            bool overwrite, bool (*exists)(const wchar_t* path)) {
  if (buffer == nullptr || name == nullptr || extension == nullptr) return nullptr;
  const size_t folder = WideTraits::length(buffer);
  const bool separated = folder > 0 && buffer[folder - 1] == L'\\';
  if (!separated && !Append(buffer, capacity, L"\\")) return nullptr;
  if (!Append(buffer, capacity, name) || !Append(buffer, capacity, extension)) return nullptr;
  if (overwrite || !exists(buffer)) return buffer;

  const size_t stem = WideTraits::length(buffer) - WideTraits::length(extension);
  if (stem < 1) return nullptr;
  WideString last;
  for (unsigned number = 2;; ++number) {
    // A long name is cut at the buffer's end rather than refused. Once the cut takes the number itself every further
    // name would be the same, and the search could not end.
    WideString ending = NumberedEnding(number, extension);
    ending.resize(std::min(ending.size(), capacity - 1 - stem));
    if (ending == last) return nullptr;
    WideTraits::copy(buffer + stem, ending.c_str(), ending.size() + 1);
    if (!exists(buffer)) return buffer;
    last = std::move(ending);
  }
}
