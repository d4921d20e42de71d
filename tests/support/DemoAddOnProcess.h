// The demonstration add-on as a running process.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>
#include <tlhelp32.h>

#include "engine/Handles.h"

namespace demo_addon {

constexpr DWORD kPatience = 30000;

// Ends it, if it runs, and waits until it is gone.
inline void Stop() {
  const KernelHandle stop(CreateEventA(nullptr, TRUE, FALSE, "LumenDemoAddOnStop"));
  SetEvent(stop.Get());
  const KernelHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
  PROCESSENTRY32W entry = {};
  entry.dwSize = sizeof(entry);
  for (BOOL more = Process32FirstW(snapshot.Get(), &entry); more; more = Process32NextW(snapshot.Get(), &entry)) {
    if (lstrcmpiW(entry.szExeFile, L"DemoAddOn.exe") != 0) continue;
    const KernelHandle process(OpenProcess(SYNCHRONIZE, FALSE, entry.th32ProcessID));
    if (process) EXPECT_EQ(WaitForSingleObject(process.Get(), kPatience), WAIT_OBJECT_0);
  }
}

}  // namespace demo_addon
