// The path policy on the real file system: what its own corpus says in memory, said again by real folders, links and
// names.
#include <windows.h>

#include <gtest/gtest.h>

#include <random>

#include "broker/BrokerPathPolicy.h"
#include "broker/Win32PathOperations.h"
#include "tests/support/RealLinks.h"
#include "tests/support/TestFiles.h"

namespace {

using namespace testing_files;  // NOLINT(google-build-using-namespace): a test's own vocabulary

class RealPaths : public testing::Test {
 protected:
  [[nodiscard]] bool Writable(const WideString& path) { return policy.IsWritableDataPath(path.c_str(), true, nullptr); }

  CleanDirectory player{PlayerDirectory()};
  CleanDirectory outside{L"C:\\lumen-test-outside"};
  Win32PathOperations platform;
  BrokerPathPolicy policy{platform, true};
};

TEST_F(RealPaths, RootsEndingsDotsAndStreams) {
  MakeDirectories(player.Path() + L"\\sub");
  MakeDirectories(player.Path() + L"\\corva.example");
  const std::pair<const wchar_t*, bool> rows[] = {
      {L"\\sub\\..\\a.sol", true}, {L"/sub/a.sol", true},   {L"\\a.exe", false},
      {L"\\a.sol:b.sol", false},   {L"\\..\\a.sol", false}, {L"\\none\\a.sol", false},
      {L"\\nul", false},           {L"\\a.sol.", false},    {L"\\corva.example\\a.sol", false},
      {L"\\sub.\\a.sol", false},   {L"\\a.sol ", true}};
  for (const auto& [below, writable] : rows) EXPECT_EQ(Writable(player.Path() + below), writable) << ToUtf8(below);
  EXPECT_TRUE(Writable(L"\\\\?\\" + player.Path() + L"\\a.sol"));
  EXPECT_FALSE(Writable(L"\\\\?\\" + player.Path() + L"\\sub\\..\\a.sol"));
  EXPECT_FALSE(Writable(L"\\\\.\\" + player.Path() + L"\\a.sol"));
  EXPECT_FALSE(Writable(outside.Path() + L"\\a.sol"));
}

// Asking about "trap " tells of "trap", while a file behind it opens behind the link.
TEST_F(RealPaths, ALinkBehindANameThatEndsInABlankIsRefused) {
  MakeDirectories(player.Path() + L"\\trap");
  MakeLink(outside.Path(), player.Path(), L"trap ");
  ASSERT_EQ(GetFileAttributesW((player.Path() + L"\\trap ").c_str()) & FILE_ATTRIBUTE_REPARSE_POINT, 0u);
  const WideString through = player.Path() + L"\\trap \\a.sol";
  ASSERT_TRUE(FileHandle(CreateFileW(through.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr)));
  ASSERT_TRUE(Exists(outside.Path() + L"\\a.sol"));
  EXPECT_FALSE(Writable(through));
  EXPECT_FALSE(Writable(L"\\\\?\\" + through));
  EXPECT_TRUE(Writable(player.Path() + L"\\trap\\a.sol"));
  RemoveLink(player.Path(), L"trap ");
}

// What is accepted is opened, and the platform is asked where it really is.
TEST_F(RealPaths, WhateverIsAcceptedOpensUnderARoot) {
  MakeDirectories(player.Path() + L"\\sub");
  constexpr WideView kPieces[] = {L"\\..",  L"\\.",     L"/",       L"\\sub", L"...",
                                  L" ",     L"\\a.sol", L".sol",    L":s",    L"\\Lumen Player",
                                  L"\\nul", L"%2E",     L"\\a.exe", L"x",     L"\\\\?\\"};
  std::mt19937 random(7);
  int opened = 0;
  for (int round = 0; round < 3000; ++round) {
    WideString path = player.Path();
    for (auto n = random() % 5; n > 0; --n) path += kPieces[random() % std::size(kPieces)];
    if (!Writable(path)) continue;
    const FileHandle file(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_ALWAYS, 0, nullptr));
    if (!file) continue;
    ++opened;
    wchar_t final[1040] = {};
    GetFinalPathNameByHandleW(file.Get(), final, static_cast<DWORD>(std::size(final)), FILE_NAME_NORMALIZED);
    const WideString upper = *platform.UpperCase(final);
    EXPECT_TRUE(upper.starts_with(L"\\\\?\\" + *platform.UpperCase(player.Path()) + L"\\"))
        << ToUtf8(path) << " -> " << ToUtf8(upper);
  }
  EXPECT_GT(opened, 20);
}

}  // namespace
