// Deletes directories with all in them, or only what has a certain age. Links are removed where they stand and never
// followed: what lies behind them is somebody else's. Read-only and open files stay. Nothing is reported. Any thread.
#pragma once

#include <cstdint>

// Deletes the files below `directory` whose age in seconds lies strictly between the two limits, and the
// subdirectories that hold nothing afterwards. `emptied` tells whether nothing is left; it is set only with true. False
// when the directory cannot be searched or there is no memory. Directories nested deeper than 130 levels stay.
[[nodiscard]] bool DeleteFilesByAge(const wchar_t* directory, uint32_t minimumAge, uint32_t maximumAge, bool* emptied);
// The same for a UTF-8 path; the directory itself goes too when nothing is left in it.
[[nodiscard]] bool DeleteFilesByAgeUtf8(const char* directory, uint32_t minimumAge, uint32_t maximumAge);

// Deletes the directory with all in it, as far as paths of 259 characters reach. False when it is still there; else
// what the last of its subdirectories gave, which is true, since one that failed would have kept it. Of a link only the
// link goes.
bool DeleteTree(const wchar_t* directory);
