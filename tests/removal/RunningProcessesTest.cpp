// How many of the platform's processes are looked at. Real ones with loaded files are in ShimConflictsTest.
#include "removal/RunningProcesses.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/support/ImportHook.h"

namespace {

// The platform's listing, in which the test program's own process stands at a chosen place.
size_t g_place = 0;
DWORD g_reportedBytes = 0;
bool g_listingFails = false;
BOOL WINAPI Enumerate(DWORD* ids, DWORD size, DWORD* bytes) {
  EXPECT_EQ(size, 1024u);
  if (g_place < size / sizeof(DWORD)) ids[g_place] = GetCurrentProcessId();
  *bytes = g_reportedBytes;
  return !g_listingFails;
}
auto* const g_find = Own<decltype(GetProcAddress)>(L"kernel32.dll", "GetProcAddress");
FARPROC WINAPI Find(HMODULE library, LPCSTR name) {
  if (std::string_view(name) != "EnumProcesses") return g_find(library, name);
  return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&Enumerate));
}

}  // namespace

TEST(RunningProcesses, OnlyTheFirst256AreLookedAt) {
  struct Row {
    const char* why;
    size_t place;
    DWORD bytes;
    size_t count;
    bool seen;
  };
  const Row rows[] = {
      {"the next one", 256, 1024, 256, false},
      {"what the platform says it would have had room for", 255, 4096, 256, true},
      {"behind what was filled in", 10, 40, 10, false},
      {"a size that is no whole number of ids", 0, 7, 1, true},
  };
  const ImportHook find(GetModuleHandleW(nullptr), "GetProcAddress", &Find);
  for (const Row& row : rows) {
    SCOPED_TRACE(row.why);
    g_place = row.place;
    g_reportedBytes = row.bytes;
    const auto ids = RunningProcesses().List().value();
    EXPECT_EQ(ids.size(), row.count);
    EXPECT_EQ(std::count(ids.begin(), ids.end(), GetCurrentProcessId()), row.seen ? 1 : 0);
  }
  g_listingFails = true;
  EXPECT_FALSE(RunningProcesses().List().has_value());
}
