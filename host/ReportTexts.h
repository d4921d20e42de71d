// What a person is told about a report: the text that belongs to its code, or a general one that belongs to its
// severity. Texts are the module's string table; the host supplies those that it lacks.
#pragma once

#include <cstdint>

#include "engine/MString.h"

// The string id of a report's text. A code has a text of its own only when the user must be told of it; ids 51 to 55
// are the general ones.
[[nodiscard]] uint32_t StringIdOf(uint32_t severity, uint32_t code);
// The host's own English text of an id, for a module whose string table lacks it; null for another id.
[[nodiscard]] const wchar_t* HostText(uint32_t id);
// Whether an id is one of the general texts, which name the code instead of the report's own text.
[[nodiscard]] bool IsGeneral(uint32_t id);
// The host's own sentence about a code, with "^" where the report's text goes; null for a code that it does not know.
[[nodiscard]] const wchar_t* TextOfCode(uint32_t code);
// Puts the variable part in the place of "^": a general text names the code, any other the report's own text.
[[nodiscard]] MString FillIn(const MString& pattern, uint32_t id, uint32_t code, const MString& text);
// A report as a sentence: the host's own about the code, or the general one of the severity.
[[nodiscard]] MString Meaning(uint32_t severity, uint32_t code, const MString& text);
// One line of the log: time, severity, code, text and meaning, parted by tabs. `time` is ISO 8601. Control characters
// become blanks, so that a report is one line and five fields whatever a file is called.
[[nodiscard]] WideString LogLine(WideView time, uint32_t severity, uint32_t code, WideView text);
