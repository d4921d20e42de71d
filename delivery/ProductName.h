// Which names an add-on product may have. The name becomes a folder, a file and part of a mutex, so it is a short plain
// word and nothing else.
#pragma once

#include <string_view>

// True for 1 to 31 ASCII letters and digits.
[[nodiscard]] bool IsPlainProductName(std::string_view name);

#ifdef _WIN32
// The same of a name as clients give it, after its conversion to the system's code page. False for null.
[[nodiscard]] bool IsValidProductName(const wchar_t* name);
#endif
