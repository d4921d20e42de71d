// The enterprise identities of the server process or of the client whose call is being served.
#pragma once

#include <windows.h>

#include <cstdint>
#include <memory>

#include "engine/WideText.h"

class EnterpriseIdentityList final {
 public:
  enum class Of : uint32_t { ServerProcess = 0, CallingClient = 1 };

  // Reads the list. Whatever fails (no such service, no impersonation, no token) leaves it empty.
  explicit EnterpriseIdentityList(Of whose);

  // Whether there is a first identity and it is not empty.
  [[nodiscard]] bool HasIdentity() const;
  // The first identity; empty when there is none.
  [[nodiscard]] WideView First() const;
  // Whether one of the identities equals `identity`, same length and same characters.
  [[nodiscard]] bool Contains(WideView identity) const;

 private:
  void Read(HANDLE token);
  [[nodiscard]] const wchar_t* At(uint32_t index) const;

  uint32_t impersonate;
  uint32_t count = 0;
  std::unique_ptr<unsigned char[]> identities;  // string pointers with the strings behind them, as the platform gave it
};
