// A real printer for tests: the platform's PostScript driver with a description of our own, and a file for a port.
#pragma once

#include <windows.h>

#include <winspool.h>

#include "tests/support/TestFiles.h"

namespace test_printer {

constexpr wchar_t kName[] = L"Lumen Test Printer";

inline wchar_t kDriver[] = L"Lumen Test Driver";
inline wchar_t kDriverFile[] = L"wineps.drv";
inline wchar_t kDescription[] = L"lumen-test.ppd";
inline wchar_t kEnvironment[] = L"Windows x64";
inline wchar_t kProcessor[] = L"WinPrint";
inline wchar_t kDataType[] = L"RAW";

// A file added by copying has to lie in the driver directory first.
inline bool CopyDescription(const WideString& from) {
  const WideString directory = L"C:\\windows\\system32\\spool\\drivers\\x64\\3";
  testing_files::MakeDirectories(directory);
  return CopyFileW(from.c_str(), (directory + L"\\" + kDescription).c_str(), FALSE) != FALSE;
}

inline bool AddDriver() {
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

inline bool AddOrMove(WideString page) {
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

// Adds the printer to this prefix, or points it elsewhere, and makes it the default one. `description` is the path of
// test-printer.ppd, `page` where each job goes: a path of the host system, "/tmp/page.ps". The platform's error, 0 when
// all is well.
[[nodiscard]] inline unsigned long Install(const WideString& description, const WideString& page) {
  SetLastError(ERROR_SUCCESS);
  return CopyDescription(description) && AddDriver() && AddOrMove(page) ? ERROR_SUCCESS : GetLastError();
}

}  // namespace test_printer
