// A real printer for tests: the platform's PostScript driver with a description of our own, and a file for a port.
#pragma once

#include "engine/WideText.h"

namespace test_printer {

constexpr wchar_t kName[] = L"Lumen Test Printer";

// Adds the printer to this prefix, or points it elsewhere, and makes it the default one. `description` is the path of
// test-printer.ppd, `page` where each job goes: a path of the host system, "/tmp/page.ps". The platform's error, 0 when
// all is well.
[[nodiscard]] unsigned long Install(const WideString& description, const WideString& page);

}  // namespace test_printer
