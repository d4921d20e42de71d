// What a process holds of the platform's, and whether work leaves more of it behind.
//
// The counts come from the system's own tables. GetProcessHandleCount and GetGuiResources would be simpler, but under
// Wine both always say 0, and a test that asks them sees no leak.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>
#include <intrin.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace counts {

// The platform's published layouts, which the toolchain's headers lack.
struct SystemHandle {
  ULONG_PTR object, process, others[3];
};
struct SystemHandles {
  ULONG_PTR count, reserved;
  SystemHandle entries[1];
};
struct GdiEntry {
  uint64_t object;
  uint32_t owner;
  uint16_t unique;
  uint8_t type, flags;
  uint64_t user;
};

// All kernel handles of this process.
inline DWORD KernelHandles() {
  constexpr ULONG kExtendedHandles = 64;
  constexpr auto kTooSmall = static_cast<LONG>(0xC0000004);
  using Query = LONG NTAPI(ULONG information, void* buffer, ULONG size, ULONG* needed);
  static auto* const query = reinterpret_cast<Query*>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQuerySystemInformation")));
  std::vector<uint64_t> buffer(1 << 14);
  while (query(kExtendedHandles, buffer.data(), static_cast<ULONG>(buffer.size() * 8), nullptr) == kTooSmall)
    buffer.resize(buffer.size() * 2);
  const auto* const handles = reinterpret_cast<const SystemHandles*>(buffer.data());
  EXPECT_GT(handles->count, 0u) << "the system does not tell";
  return static_cast<DWORD>(
      std::count_if(handles->entries, handles->entries + handles->count,
                    [](const SystemHandle& handle) { return handle.process == GetCurrentProcessId(); }));
}

// The GDI objects of this process, from the table that the system maps into every process; Wine's names no owner.
inline DWORD GdiObjects() {
  constexpr size_t kEntries = 65536;
  const auto* const block = reinterpret_cast<const uint8_t*>(__readgsqword(0x60));
  const auto* const table = *reinterpret_cast<const GdiEntry* const*>(block + 0xF8);
  if (table == nullptr) return 0;  // no GDI call yet
  return static_cast<DWORD>(std::count_if(table, table + kEntries, [](const GdiEntry& entry) {
    return entry.type != 0 && (entry.owner == 0 || (entry.owner & ~1u) == (GetCurrentProcessId() & ~1u));
  }));
}

}  // namespace counts

// Runs `round` many times, at least eight. Fails when the counts rise: the lowest of the last quarter of the rounds
// lies above the lowest of the second. So neither what first calls load nor a thread of the platform's that comes and
// goes counts.
template <class Round>
[[nodiscard]] testing::AssertionResult LeavesNothing(int rounds, Round round) {
  std::vector<DWORD> sums;
  for (int i = 0; i < rounds; ++i) {
    round(i);
    sums.push_back(counts::KernelHandles() + counts::GdiObjects());
  }
  const auto quarter = static_cast<std::ptrdiff_t>(sums.size() / 4);
  const DWORD early = *std::min_element(sums.begin() + quarter, sums.begin() + 2 * quarter);
  const DWORD late = *std::min_element(sums.end() - quarter, sums.end());
  if (late <= early) return testing::AssertionSuccess();
  return testing::AssertionFailure() << "rises from " << early << " to " << late << " in " << rounds << " rounds";
}
