#include "install/UniqueFileName.h"

#include <gtest/gtest.h>

#include <set>

#include "engine/WideText.h"

namespace {

std::set<WideString> g_taken;
bool g_everythingTaken = false;

bool Exists(const wchar_t* path) {
  return g_everythingTaken || g_taken.count(path) > 0;
}

std::string Find(WideView folder, const wchar_t* name, const wchar_t* extension, size_t capacity = 260,
                 bool overwrite = false) {
  // The byte behind the capacity shows a write past it.
  WideString buffer(capacity + 1, L'#');
  WideTraits::copy(buffer.data(), folder.data(), folder.size());
  buffer[folder.size()] = 0;
  const wchar_t* const found = MakeUniqueFileName(buffer.data(), capacity, name, extension, overwrite, Exists);
  EXPECT_EQ(buffer[capacity], L'#');
  return found == nullptr ? "(none)" : ToUtf8(found);
}

TEST(UniqueFileName, CountsUpFromTwo) {
  g_taken = {L"C:\\d\\Game.url", L"C:\\d\\Game (2).url"};
  EXPECT_EQ(Find(L"C:\\d", L"Game", L".url"), "C:\\d\\Game (3).url");
  EXPECT_EQ(Find(L"C:\\d\\", L"Game", L".lnk"), "C:\\d\\Game.lnk");
  EXPECT_EQ(Find(L"C:\\d", L"Game", L".url", 260, true), "C:\\d\\Game.url");
  EXPECT_EQ(Find(L"", L"Game", L".url"), "\\Game.url");
}

TEST(UniqueFileName, RoomIsBounded) {
  g_taken = {L"C:\\d\\Game.url"};
  EXPECT_EQ(Find(L"C:\\d", L"Game", L".url", 13), "(none)") << "the first name does not fit";
  EXPECT_EQ(Find(L"C:\\d", L"Game", L".url", 14), "C:\\d\\Game (2)") << "a further one is cut";
  EXPECT_EQ(Find(L"C:\\d", nullptr, L".url"), "(none)");
  g_everythingTaken = true;
  EXPECT_EQ(Find(L"C:\\d", L"Game", L".url", 14), "(none)") << "the search ends when the number itself is cut";
}

}  // namespace
