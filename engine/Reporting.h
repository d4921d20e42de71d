// Reports to the host, and the forms that their texts take. A report cannot fail.
#pragma once

#include <cstdint>

#include "engine/MString.h"
#include "engine/ReportCode.h"

class HostCallbacks;

// A null host is passed over.
void Report(HostCallbacks* host, Severity severity, ReportCode code, const MString& text = MString(L""));

enum class ErrorRadix : uint32_t { Hexadecimal = 16, Decimal = 10 };

// path, blank, error
[[nodiscard]] MString PathAndError(const MString& path, uint32_t error, ErrorRadix radix = ErrorRadix::Hexadecimal);
// key, "/", value name, blank, error. A number that could not be written has no blank ahead of the error.
[[nodiscard]] MString KeyValueError(const MString& key, const MString& value, uint32_t error, bool blank = true);
// key, "/", blank, error
[[nodiscard]] MString KeyAndError(const MString& key, uint32_t error);
// The error alone, in decimal.
[[nodiscard]] MString ErrorAlone(uint32_t error);
