#include "tests/support/TestPrinter.h"

#include <windows.h>

#include <winspool.h>

#include "tests/support/TestFiles.h"

namespace test_printer {

namespace {

wchar_t kDriver[] = L"Lumen Test Driver";
wchar_t kDriverFile[] = L"wineps.drv";
wchar_t kDescription[] = L"lumen-test.ppd";
wchar_t kEnvironment[] = L"Windows x64";
wchar_t kProcessor[] = L"WinPrint";
wchar_t kDataType[] = L"RAW";

// A file added by copying has to lie in the driver directory first.
bool CopyDescription(const WideString& from) {
  const WideString directory = L"C:\\windows\\system32\\spool\\drivers\\x64\\3";
  testing_files::MakeDirectories(directory);
  return CopyFileW(from.c_str(), (directory + L"\\" + kDescription).c_str(), FALSE) != FALSE;
}

bool AddDriver() {
  DRIVER_INFO_3W driver = {};
  driver.cVersion = 3;
  driver.pName = kDriver;
  driver.pEnvironment = kEnvironment;
  driver.pDriverPath = kDriverFile;
  driver.pDataFile = kDescription;
  driver.pConfigFile = kDriverFile;
  driver.pDefaultDataType = kDataType;
  return AddPrinterDriverExW(nullptr, 3, reinterpret_cast<BYTE*>(&driver),
                             APD_COPY_NEW_FILES | APD_COPY_FROM_DIRECTORY) != FALSE;
}

bool AddOrMove(WideString page) {
  WideString name(kName);
  HANDLE existing = nullptr;
  if (OpenPrinterW(name.data(), &existing, nullptr) && existing != nullptr) {
    DeletePrinter(existing);
    ClosePrinter(existing);
  }
  PRINTER_INFO_2W printer = {};
  printer.pPrinterName = name.data();
  printer.pPortName = page.data();
  printer.pDriverName = kDriver;
  printer.pPrintProcessor = kProcessor;
  printer.pDatatype = kDataType;
  const HANDLE added = AddPrinterW(nullptr, 2, reinterpret_cast<BYTE*>(&printer));
  if (added == nullptr) return false;
  ClosePrinter(added);
  return SetDefaultPrinterW(name.data()) != FALSE;
}

}  // namespace

unsigned long Install(const WideString& description, const WideString& page) {
  SetLastError(ERROR_SUCCESS);
  return CopyDescription(description) && AddDriver() && AddOrMove(page) ? ERROR_SUCCESS : GetLastError();
}

}  // namespace test_printer
