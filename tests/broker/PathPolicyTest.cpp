// The path policy over an in-memory file system: the whole corpus, and what no corpus would think of.
#include "broker/BrokerPathPolicy.h"

#include <gtest/gtest.h>

#include <random>

#include "tests/support/MemoryPathOperations.h"

namespace {

struct Subject {
  explicit Subject(bool localAppData = false) : policy(system, true) { policy.SetEnableLocalAppData(localAppData); }

  std::string Judge(const WideString& path) {
    const auto expanded = policy.ExpandBrokerPath(path.c_str());
    if (!expanded) return "";
    const wchar_t* const text = expanded->c_str();
    std::string flags;
    if (policy.IsWritableDataPath(text, true, nullptr)) flags += 'W';
    if (policy.IsWritableDataPath(text, false, nullptr)) flags += 'w';
    if (policy.IsCreatableDirectory(text)) flags += 'C';
    if (policy.IsSearchablePath(text)) flags += 'S';
    return flags;
  }

  MemoryPathOperations system;
  BrokerPathPolicy policy;
};

// Each row with the caches cold, and again with those that the rows before it left.
TEST(PathPolicy, JudgesTheWholeCorpus) {
  const std::vector<PathRow> rows = ReadPathCorpus();
  ASSERT_GE(rows.size(), 250u);
  Subject warm[] = {Subject(false), Subject(true)};
  for (const PathRow& row : rows) {
    EXPECT_EQ(Subject(row.localAppData).Judge(row.path), row.flags)
        << ToUtf8(row.path).substr(0, 300) << "\n  " << row.reason;
    EXPECT_EQ(warm[row.localAppData ? 1 : 0].Judge(row.path), row.flags) << row.reason;
  }
}

// Paths made of the pieces that attacks are made of.
TEST(PathPolicy, WhateverIsAcceptedLiesUnderARootWhenOpened) {
  const WideView roots[] = {L"C:\\Users\\A\\AppData\\Roaming\\Halcyonics\\Lumen Player",
                            L"\\\\?\\C:\\Users\\A\\AppData\\Roaming\\Halcyonics\\Lumen Player",
                            L"\\\\?\\C:\\Users\\A\\AppData\\Roaming\\Halcyonics",
                            L"C:\\Users\\A\\AppData\\Local\\Temp\\Low",
                            L"C:\\Users\\A\\AppData\\Roaming\\Corva\\Lumen Player",
                            L"C:\\Outside"};
  // One piece between two bars.
  WideView joined =
      L"\\\\?\\|\\\\.\\|\\..|\\.|/..|/|\\|...|.| |\\sub|\\link-out|\\link-in|\\LINK-UP|\\mount-out|"
      L"\\mount-up|\\chain16|\\chain17|\\chain16out|\\chain17out|\\cycle-a|\\file-link.sol|\\LUMENP~1|"
      L"\\HALCYO~1|\\corva.example|\\CORVA~1.EXA|:stream|%2E|\\nul|\\a.sol|\\a.exe|.sol|\\Lumen Player|"
      L"\\Halcyonics|\\Roaming|\\o3|\\k16|\\link-relative|\\broken|\\link-settings|\\trap|\\trap |\\pit.|"
      L"\\link-trap|\\link-pit|\\link-up-dots|\\link-null|x|\x0130|*|?";
  std::vector<WideView> pieces;
  for (size_t end = 0; end != WideView::npos; joined.remove_prefix(std::min(end, joined.size() - 1) + 1)) {
    pieces.push_back(joined.substr(0, end = joined.find(L'|')));
  }
  std::mt19937 random(20261121);
  int accepted = 0;
  for (const int setting : {0, 1, 2, 3}) {
    const bool localAppData = (setting & 1) != 0;
    Subject subject(localAppData);
    subject.system.foldsVerbatim = (setting & 2) != 0;
    for (int round = 0; round < 8000; ++round) {
      WideString path(roots[random() % std::size(roots)]);
      for (auto n = random() % 7; n > 0; --n) {
        path += random() % 10 == 0 ? roots[random() % std::size(roots)] : pieces[random() % pieces.size()];
      }
      if (!subject.policy.IsWritableDataPath(path.c_str(), false, nullptr)) continue;
      ++accepted;
      const auto opened = subject.system.OpenForReal(path);
      if (opened)
        EXPECT_TRUE(MemoryPathOperations::LiesUnderAWritableRoot(*opened, localAppData))
            << ToUtf8(path) << " -> " << ToUtf8(*opened);
    }
  }
  EXPECT_GT(accepted, 500) << "the generator must reach what is allowed, or the property says nothing";
}

TEST(PathPolicy, LinksOfTheObjectManagerAndAtTheTopAreFollowed) {
  Subject subject;
  const WideString sub = WideString(MemoryPathOperations::kPlayerRoot) + L"\\SUB";
  subject.system.AddObjectLink(L"\\RPC Control\\step", L"\\??\\C:\\Outside");
  // A sandbox that can make a null in a name is asked about with the part in front of it.
  subject.system.AddObjectLink(L"\\RPC Control\\null", sub + WideString(1, L'\0') + L"\\X");
  subject.system.AddLink(L"M:", L"\\??\\C:\\Outside", true);
  const std::pair<const wchar_t*, const char*> rows[] = {{L"\\\\?\\GLOBALROOT\\RPC Control\\step", "C:\\Outside"},
                                                         {L"\\RPC Control\\other", "none"},
                                                         {L"\\RPC Control\\null", "none"},
                                                         {L"M:\\SUB\\F.SOL", "C:\\Outside\\SUB\\F.SOL"}};
  for (const auto& [path, leads] : rows) {
    std::optional<WideString> target;
    EXPECT_EQ(subject.policy.ResolveOneLink(path, target), leads != std::string("none")) << ToUtf8(path);
    EXPECT_EQ(ToUtf8(target.value_or(L"none")), leads);
  }
}

}  // namespace
