// The sample players are what they are taken for: libraries of this build's version with their kind's entry points.
#include <windows.h>

#include <gtest/gtest.h>

#include <vector>

#include "engine/DllHelpers.h"
#include "engine/WideText.h"

TEST(SamplePlayers, HaveThisBuildsVersionAndTheirKindsEntryPoints) {
  struct {
    const wchar_t* path;
    std::vector<const char*> entryPoints;
  } const rows[] = {
      {L"players\\LumenPlayer.ocx",
       {"DllRegisterServer", "DllUnregisterServer", "DllGetClassObject", "DllCanUnloadNow"}},
      {L"players\\nplumen.dll", {"NP_GetEntryPoints", "NP_Initialize", "NP_Shutdown"}},
      {L"players\\pepperlumen.dll", {"PPP_InitializeModule", "PPP_GetInterface", "PPP_ShutdownModule"}},
  };
  const VersionDllHelper version;
  ASSERT_TRUE(version.IsAvailable());
  for (const auto& row : rows) {
    DWORD ignored = 0;
    std::vector<char> block(version.GetFileVersionInfoSizeW(row.path, &ignored));
    ASSERT_FALSE(block.empty()) << ToUtf8(row.path);
    ASSERT_TRUE(version.GetFileVersionInfoW(row.path, 0, static_cast<DWORD>(block.size()), block.data()));
    VS_FIXEDFILEINFO* fixed = nullptr;
    UINT size = 0;
    ASSERT_TRUE(version.VerQueryValueW(block.data(), L"\\", reinterpret_cast<void**>(&fixed), &size));
    EXPECT_EQ(fixed->dwFileVersionMS, MAKELONG(0, 28)) << ToUtf8(row.path);
    EXPECT_EQ(fixed->dwFileVersionLS, MAKELONG(126, 0)) << ToUtf8(row.path);
    const LibraryHandle library(LoadLibraryW(row.path));
    ASSERT_TRUE(library) << ToUtf8(row.path);
    for (const char* const name : row.entryPoints) EXPECT_NE(GetProcAddress(library.Get(), name), nullptr) << name;
  }
}
