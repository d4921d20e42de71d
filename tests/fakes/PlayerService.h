// What the stand-in for the player's services and the tests that drive it agree on.
#pragma once

// With the service's name behind it: a manual-reset event that ends the service.
constexpr wchar_t kPlayerServiceEnd[] = L"Global\\LumenEnd";
