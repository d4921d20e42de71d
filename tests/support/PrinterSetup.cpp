// Adds the tests' printer to a prefix: PrinterSetup.exe DESCRIPTION PAGE. Exit code: the platform's error.
#include "tests/support/TestPrinter.h"

int wmain(int argc, wchar_t** argv) {
  return argc == 3 ? static_cast<int>(test_printer::Install(argv[1], argv[2])) : 87;
}
