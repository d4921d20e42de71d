// What a person is told about a report: the text that belongs to its code, or a general one that belongs to its
// severity.
#pragma once

#include <cstdint>

#include "engine/MString.h"

// The string id of a report's text. Ids 51 to 55 are the general ones.
[[nodiscard]] uint32_t StringIdOf(uint32_t severity, uint32_t code);
// The English text of an id from 51 to 79 that this host knows; null for another. The module's string table goes first.
[[nodiscard]] const wchar_t* EnglishText(uint32_t id);
// Puts the variable part in: a general text names the code, any other the report's own text.
[[nodiscard]] MString FillIn(const MString& pattern, uint32_t id, uint32_t code, const MString& text);
// One line of the log: time, severity, code and text, parted by tabs. `time` is ISO 8601.
[[nodiscard]] MString LogLine(const MString& time, uint32_t severity, uint32_t code, const MString& text);
