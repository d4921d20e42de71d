#include "tests/support/TestPrinter.h"

#include <windows.h>

#include <winspool.h>

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
  wchar_t directory[MAX_PATH] = {};
  DWORD needed = 0;
  if (!GetPrinterDriverDirectoryW(nullptr, kEnvironment, 1, reinterpret_cast<BYTE*>(directory), sizeof(directory),
                                  &needed)) {
    return false;
  }
  const WideString versioned = WideString(directory) + L"\\3";
  CreateDirectoryW(directory, nullptr);
  CreateDirectoryW(versioned.c_str(), nullptr);
  return CopyFileW(from.c_str(), (versioned + L"\\" + kDescription).c_str(), FALSE) != FALSE;
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
  wchar_t name[sizeof(kName) / sizeof(kName[0])] = {};
  lstrcpyW(name, kName);
  HANDLE existing = nullptr;
  if (OpenPrinterW(name, &existing, nullptr) && existing != nullptr) {
    DeletePrinter(existing);
    ClosePrinter(existing);
  }
  PRINTER_INFO_2W printer = {};
  printer.pPrinterName = name;
  printer.pPortName = page.data();
  printer.pDriverName = kDriver;
  printer.pPrintProcessor = kProcessor;
  printer.pDatatype = kDataType;
  const HANDLE added = AddPrinterW(nullptr, 2, reinterpret_cast<BYTE*>(&printer));
  if (added == nullptr) return false;
  ClosePrinter(added);
  return SetDefaultPrinterW(name) != FALSE;
}

}  // namespace

unsigned long Install(const WideString& description, const WideString& page) {
  SetLastError(ERROR_SUCCESS);
  return CopyDescription(description) && AddDriver() && AddOrMove(page) ? ERROR_SUCCESS : GetLastError();
}

}  // namespace test_printer
