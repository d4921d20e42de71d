#include "broker/FilterArray.h"

#include <algorithm>

namespace {

// More would overflow the 32-bit size of the table of pairs.
constexpr uint32_t kMostPairs = 0x0FFFFFFF;

}  // namespace

Result CheckFilterArguments(const FilterArguments& arguments) {
  if (arguments.pairs > kMostPairs) return result::InvalidArgument;
  const bool fits = arguments.pairs == 0 ? arguments.length == 0 && !arguments.hasArray
                                         : arguments.length != 0 && arguments.hasArray && arguments.dimensions == 1 &&
                                               arguments.elements == arguments.length;
  return fits ? result::Ok : result::InvalidArgument;
}

Result DecodeFilters(std::span<uint8_t> bytes, uint32_t pairs) {
  if (bytes.empty() || bytes.size() % sizeof(wchar_t) != 0) return result::InvalidArgument;
  const std::span<wchar_t> text(reinterpret_cast<wchar_t*>(bytes.data()), bytes.size() / sizeof(wchar_t));
  // The terminator ends the text and the array alike; what stood behind an early one would never be seen.
  if (std::find(text.begin(), text.end(), L'\0') != text.end() - 1) return result::InvalidArgument;

  const uint64_t wanted = 2 * static_cast<uint64_t>(pairs);
  uint64_t fields = 0;
  bool inField = false;
  size_t out = 0;
  for (size_t in = 0; in + 1 < text.size(); ++in) {
    wchar_t character = text[in];
    inField = true;
    if (character == L'\\') {
      character = text[++in];  // the terminator at worst, which is no escape
      if (character == L'0') {
        character = 0;
        inField = false;
        if (++fields > wanted) return result::InvalidArgument;
      } else if (character != L'\\') {
        return result::InvalidArgument;
      }
    }
    text[out++] = character;  // never ahead of what is read
  }
  return !inField && fields == wanted ? result::Ok : result::InvalidArgument;
}

const wchar_t* TakeField(const wchar_t*& at) {
  const wchar_t* const field = at;
  while (*at != 0) ++at;
  ++at;
  return field;
}
