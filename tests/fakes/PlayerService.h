// What the stand-in for the player's services and the tests that drive it agree on.
#pragma once

// An exit code that the stand-in gives only once the event is set.
constexpr int kPlayerServiceWaits = 1000;
constexpr wchar_t kPlayerServiceRelease[] = L"LumenPlayerServiceRelease";
