#include "host/Console.h"

#include <windows.h>

#include "engine/WideText.h"

namespace {

HANDLE StreamOf(DWORD which) {
  HANDLE stream = GetStdHandle(which);
  if (stream != nullptr && stream != INVALID_HANDLE_VALUE) return stream;
  AttachConsole(ATTACH_PARENT_PROCESS);
  return GetStdHandle(which);
}

bool IsConsole(HANDLE stream) {
  DWORD mode = 0;
  return GetConsoleMode(stream, &mode);
}

void Write(DWORD which, std::string_view text) {
  const HANDLE stream = StreamOf(which);
  if (stream == nullptr || stream == INVALID_HANDLE_VALUE) return;
  DWORD written = 0;
  if (IsConsole(stream)) {
    const WideString wide = FromUtf8(text);
    WriteConsoleW(stream, wide.data(), static_cast<DWORD>(wide.size()), &written, nullptr);
  } else {
    WriteFile(stream, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
  }
}

}  // namespace

void Say(std::string_view text) {
  Write(STD_OUTPUT_HANDLE, text);
}

void SayError(std::string_view text) {
  Write(STD_ERROR_HANDLE, text);
}

void ShowProgress(const std::string& line, bool finished) {
  static size_t shown = 0;
  if (!IsConsole(StreamOf(STD_OUTPUT_HANDLE))) {
    if (finished) Say(line + "\n");
    return;
  }
  const size_t rest = shown > line.size() ? shown - line.size() : 0;
  Say("\r" + line + std::string(rest, ' ') + (finished ? "\n" : ""));
  shown = finished ? 0 : line.size();
}

char Ask(const std::string& question) {
  Say(question + " ");
  char answer = 0;
  DWORD read = 0;
  const HANDLE in = StreamOf(STD_INPUT_HANDLE);
  if (!ReadFile(in, &answer, 1, &read, nullptr) || read == 0) return 0;
  char rest = answer;
  while (rest != '\n' && ReadFile(in, &rest, 1, &read, nullptr) && read != 0) {
  }
  return answer >= 'A' && answer <= 'Z' ? static_cast<char>(answer + 32) : answer;
}
