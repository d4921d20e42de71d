// In place of CreateProcessAsUserW: keeps the command lines, and starts nothing.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include "engine/WideText.h"
#include "tests/support/Texts.h"

namespace started_as_user {

inline Lines g_lines;

inline BOOL WINAPI Start(HANDLE token, LPCWSTR program, LPWSTR line, LPSECURITY_ATTRIBUTES, LPSECURITY_ATTRIBUTES,
                         BOOL inherits, DWORD flags, LPVOID, LPCWSTR, LPSTARTUPINFOW startup, LPPROCESS_INFORMATION) {
  TOKEN_TYPE type = TokenImpersonation;
  DWORD bytes = 0;
  EXPECT_TRUE(GetTokenInformation(token, TokenType, &type, sizeof(type), &bytes));
  EXPECT_EQ(type, TokenPrimary);
  EXPECT_EQ(program, nullptr);
  EXPECT_FALSE(inherits);
  EXPECT_EQ(flags, 0x4000008u);
  EXPECT_EQ(startup->cb, 104u);
  g_lines.push_back(ToUtf8(line));
  SetLastError(ERROR_FILE_NOT_FOUND);
  return FALSE;  // one that fails does not keep the next from its turn
}

}  // namespace started_as_user
