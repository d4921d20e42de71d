// Output and questions of a program that has no console of its own.
#pragma once

#include <string>
#include <string_view>

// Writes UTF-8 to where the caller redirected the stream, or to the console that the program was started from; nowhere
// when there is neither. A windows program gets no console window, so none flashes up when COM starts it.
void Say(std::string_view text);
void SayError(std::string_view text);

// A line of progress that takes the place of the one before it on a console. In a redirected stream only a finished one
// is written, as a line.
void ShowProgress(const std::string& line, bool finished);

// The first character of the answer, in lower case; 0 when nobody answers.
[[nodiscard]] char Ask(const std::string& question);
