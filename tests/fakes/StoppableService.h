// What the stoppable service and the tests that drive it agree on.
#pragma once

constexpr wchar_t kStoppableService[] = L"LumenStoppable";
// A manual-reset event; the service ends when it is set.
constexpr wchar_t kStoppableServiceRelease[] = L"Global\\LumenStoppableRelease";
