// Dotted versions and what they mean for an installation: which of two is higher, and how an installed one stands to
// this build. Pure logic; any thread.
#pragma once

#include <array>
#include <cstdint>

#include "engine/MString.h"

// Major, minor, build and revision. A missing or empty part is 0, and so is one that does not begin with a digit.
using VersionNumbers = std::array<uint32_t, 4>;
[[nodiscard]] VersionNumbers ParseVersion(const MString& text);

// 1 when `a` is higher, -1 when `b` is, 0 when their four numbers are equal.
[[nodiscard]] int32_t CompareVersionStrings(const MString& a, const MString& b);

// How an installed version stands to this build. The numbers are what the shim answers.
enum class InstalledState : uint32_t { NotInstalled = 0, Older = 1, Same = 2, Newer = 3 };
[[nodiscard]] InstalledState StateOfVersion(const MString& installed);

// Whether this build may be installed when `lowestSafe` is the lowest safe revision of its major version.
[[nodiscard]] bool IsSafeRevision(uint32_t lowestSafe);
