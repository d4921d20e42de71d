// Registry values as results instead of out-parameters. Keys are opened and closed within each call; names are narrow,
// as the product's own keys are plain ASCII. Errors are the platform's; ERROR_SUCCESS is 0.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>

#include "engine/Handles.h"
#include "engine/WideText.h"

// The opened key, or an invalid one.
[[nodiscard]] RegistryKey OpenKey(HKEY root, const char* path, REGSAM rights);
[[nodiscard]] RegistryKey CreateKey(HKEY root, const char* path, REGSAM rights);

// A text value without its terminator; nothing when there is none or it is of another type. `name` null or empty means
// the key's default value.
[[nodiscard]] std::optional<std::string> ReadText(HKEY key, const char* name);
[[nodiscard]] std::optional<std::string> ReadText(HKEY root, const char* path, const char* name);
[[nodiscard]] std::optional<WideString> ReadWideText(HKEY root, const wchar_t* path, const wchar_t* name);
[[nodiscard]] std::optional<uint32_t> ReadNumber(HKEY key, const char* name);
[[nodiscard]] std::optional<uint32_t> ReadNumber(HKEY root, const char* path, const char* name);

[[nodiscard]] LONG WriteText(HKEY key, const char* name, const std::string& text);
[[nodiscard]] LONG WriteNumber(HKEY key, const char* name, uint32_t number);
// Opens `path` for writing and deletes one of its values.
[[nodiscard]] LONG DeleteValue(HKEY root, const char* path, const char* name);
