// The path policy over an in-memory file system: the whole corpus, and what no corpus would think of.
#include "broker/BrokerPathPolicy.h"

#include <gtest/gtest.h>

#include <random>

#include "broker/ReparseData.h"
#include "tests/support/MemoryPathOperations.h"
#include "tests/support/PathCorpus.h"

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

TEST(PathPolicy, JudgesTheWholeCorpus) {
  const std::vector<PathRow> rows = ReadPathCorpus();
  ASSERT_GE(rows.size(), 250u);
  for (const PathRow& row : rows) {
    Subject subject(row.localAppData);
    EXPECT_EQ(subject.Judge(row.path), row.flags) << ToUtf8(row.path).substr(0, 300) << "\n  " << row.reason;
  }
}

TEST(PathPolicy, JudgesTheSameWithWarmCaches) {
  Subject roaming;
  Subject local(true);
  for (const PathRow& row : ReadPathCorpus()) {
    EXPECT_EQ((row.localAppData ? local : roaming).Judge(row.path), row.flags) << row.reason;
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

TEST(PathPolicy, EveryRootIsNeededBeforeAnythingMayBeWritten) {
  const wchar_t* const path = L"C:\\Users\\A\\AppData\\Roaming\\Halcyonics\\Lumen Player\\a.sol";
  for (const ShellFolder missing : {ShellFolder::RoamingAppData, ShellFolder::LocalAppData}) {
    Subject subject;
    subject.system.folders.erase(missing);
    EXPECT_EQ(subject.policy.IsWritableDataPath(path, true, nullptr), missing != ShellFolder::RoamingAppData);
  }
}

TEST(PathPolicy, TempIsTheLowIntegrityDirectoryOfTheServerOnly) {
  MemoryPathOperations system;
  BrokerPathPolicy inClient(system, false);
  EXPECT_TRUE(inClient.IsWritableDataPath(L"C:\\Users\\A\\AppData\\Local\\Temp\\a.exe", true, nullptr));
  BrokerPathPolicy inServer(system, true);
  EXPECT_FALSE(inServer.IsWritableDataPath(L"C:\\Users\\A\\AppData\\Local\\Temp\\a.exe", true, nullptr));
  system.tempPath += L"Low\\";
  BrokerPathPolicy already(system, true);
  EXPECT_TRUE(already.IsWritableDataPath(L"C:\\Users\\A\\AppData\\Local\\Temp\\Low\\a.exe", true, nullptr));
}

TEST(PathPolicy, SharedObjectsAreToldWhateverTheAnswer) {
  const WideString player = L"C:\\Users\\A\\AppData\\Roaming\\Halcyonics\\Lumen Player";
  const std::pair<WideString, bool> rows[] = {
      {player + L"\\#SharedObjects\\a.sol", true},
      {player + L"\\#SharedObjects\\a.exe", true},
      {player + L"\\#SharedObjectsx\\a.sol", false},
      {player + L"\\a.sol", false},
      {L"C:\\Outside\\a.sol", false},
  };
  for (const auto& [path, shared] : rows) {
    Subject subject;
    bool flag = !shared;
    (void)subject.policy.IsWritableDataPath(path.c_str(), true, &flag);
    EXPECT_EQ(flag, shared) << ToUtf8(path);
  }
  // Behind the support directory a component that begins with "#" and has a name counts as one.
  Subject subject;
  (void)subject.policy.IsWritableDataPath(L"C:\\a", true, nullptr);  // fills the roots
  const WideString support =
      WideString(MemoryPathOperations::kPlayerRoot) + L"\\CORVA.EXAMPLE\\SUPPORT\\LUMENPLAYER\\SYS";
  const std::pair<WideString, bool> supportRows[] = {
      {L"\\#SITE\\SETTINGS.SOL", true},
      {L"\\#\\SETTINGS.SOL", false},
      {L"\\SITE\\SETTINGS.SOL", false},
      {L"", false},
      {L"X\\#A\\B", false},
  };
  for (const auto& [below, shared] : supportRows) {
    EXPECT_EQ(subject.policy.IsSharedObjectsPath(support + below), shared) << ToUtf8(below);
  }
}

TEST(PathPolicy, ObjectManagerLinksAreFollowed) {
  Subject subject;
  subject.system.AddObjectLink(L"\\RPC Control\\step", L"\\??\\C:\\Outside");
  std::optional<WideString> target;
  EXPECT_TRUE(subject.policy.ResolveOneLink(L"\\\\?\\GLOBALROOT\\RPC Control\\step", target));
  EXPECT_EQ(ToUtf8(target.value_or(L"none")), "C:\\Outside");
  // A name that is no link has directories that nobody can look at.
  EXPECT_FALSE(subject.policy.ResolveOneLink(L"\\RPC Control\\other", target));
  EXPECT_FALSE(target.has_value());
}

TEST(PathPolicy, ALinkAtTheTopKeepsTheSlashOfWhatFollows) {
  Subject subject;
  subject.system.AddLink(L"M:", L"\\??\\C:\\Outside", true);
  std::optional<WideString> target;
  EXPECT_TRUE(subject.policy.ResolveOneLink(L"M:\\SUB\\F.SOL", target));
  EXPECT_EQ(ToUtf8(target.value_or(L"none")), "C:\\Outside\\SUB\\F.SOL");
}

// A sandbox that can make a null in a name is asked about with the part in front of it.
TEST(PathPolicy, ATargetWithANullInItIsRefused) {
  Subject subject;
  const WideString hidden = WideString(MemoryPathOperations::kPlayerRoot) + L"\\SUB" + WideString(1, L'\0') + L"\\X";
  subject.system.AddObjectLink(L"\\RPC Control\\null", hidden);
  subject.system.AddObjectLink(L"\\RPC Control\\plain", WideString(MemoryPathOperations::kPlayerRoot) + L"\\SUB");
  std::optional<WideString> target;
  EXPECT_FALSE(subject.policy.ResolveOneLink(L"\\RPC Control\\null", target));
  EXPECT_FALSE(target.has_value());
  EXPECT_TRUE(subject.policy.ResolveOneLink(L"\\RPC Control\\plain", target));
  EXPECT_TRUE(target.has_value());
}

TEST(PathPolicy, AServerAloneHasNothingToResolve) {
  const std::pair<WideView, bool> rows[] = {
      {L"\\\\server", true}, {L"\\\\server\\", true},  {L"//server", true},  {L"\\\\", false},
      {L"\\\\s\\t", false},  {L"\\\\\\server", false}, {L"\\server", false}, {L"C:\\", false},
  };
  for (const auto& [path, bare] : rows) EXPECT_EQ(BrokerPathPolicy::IsUncServerRoot(path), bare) << ToUtf8(path);
}

TEST(ReparseData, EveryTruncationIsNoLink) {
  for (const uint32_t tag : {0xA000000Cu, 0xA0000003u}) {
    const std::vector<uint8_t> whole = MakeReparseData(tag, L"\\??\\C:\\x");
    ASSERT_EQ(ToUtf8(ParseReparseTarget(whole).value_or(L"none")), "\\??\\C:\\x");
    for (size_t size = 0; size < whole.size(); ++size) {
      EXPECT_FALSE(ParseReparseTarget({whole.data(), size}).has_value()) << size;
    }
  }
}

}  // namespace
