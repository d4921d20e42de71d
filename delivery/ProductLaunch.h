// Starts an add-on product, if its files are those that were signed.
#pragma once

#include "engine/DllHelpers.h"

// Starts the user's product `name` with `parameters` as its whole command line (null for none) and waits without limit
// until it is ready for input. A product that must run elevated is started through the shell instead, without its
// parameters, and not waited for. False, with nothing started, for a bad name, a refused digest or a failed start.
// The broker's thread; the shell needs its apartment.
[[nodiscard]] bool LaunchProduct(const wchar_t* name, const wchar_t* parameters, const wchar_t* overridePath,
                                 const Kernel32DllHelper& kernel32, const Shell32DllHelper& shell32);
