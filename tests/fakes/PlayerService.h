// What the stand-in for the player's services and the tests that drive it agree on.
#pragma once

// An exit code that the stand-in gives only once the event is set.
constexpr int kPlayerServiceWaits = 1000;
constexpr wchar_t kPlayerServiceRelease[] = L"LumenPlayerServiceRelease";
// With the service's name behind it: a manual-reset event that ends the service.
constexpr wchar_t kPlayerServiceEnd[] = L"Global\\LumenEnd";
