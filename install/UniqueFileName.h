// Finds a free name in a folder: "name.ext", then "name (2).ext", "name (3).ext" and so on.
#pragma once

#include <cstddef>

// `buffer` holds a folder and receives folder, "\", name and extension, at most `capacity` units with the terminator;
// with `overwrite` the first name is taken whether or not it is free. `exists` tells whether a path is taken. Null,
// with the buffer's content undefined, when an argument is null or there is no room for the first name or for any
// further number.
[[nodiscard]] wchar_t* MakeUniqueFileName(wchar_t* buffer, size_t capacity, const wchar_t* name,
                                          const wchar_t* extension, bool overwrite,
                                          bool (*exists)(const wchar_t* path));
