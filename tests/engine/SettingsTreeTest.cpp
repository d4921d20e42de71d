// The token text of settings and its look-up. A parsed tree is compared in a short written form:
// name[values]{children}, entries in their order in the tree, which is the reverse of the text's.
#include "engine/SettingsTree.h"

#include <gtest/gtest.h>

#include "tests/support/Texts.h"

namespace {

std::string Written(const SettingsNode* level) {
  std::string out;
  for (const SettingsNode* node = level; node != nullptr; node = node->next) {
    if (!out.empty()) out += ' ';
    out += Text(node->name);
    if (node->values != nullptr) {
      out += '[';
      for (const SettingsNode* value = node->values; value != nullptr; value = value->next) {
        out += Text(value->name) + (value->next == nullptr ? "]" : "|");
      }
    }
    if (node->children != nullptr) out += "{" + Written(node->children) + "}";
  }
  return out;
}

std::string Parsed(const wchar_t* text) {
  SettingsTree tree;
  ParseSettings(&tree, MString(text));
  return Written(tree.documents->children);
}

std::string FirstValue(const SettingsNode* node) {
  if (node == nullptr) return "(none)";
  return node->values == nullptr ? "(no value)" : Text(node->values->name);
}

}  // namespace

TEST(ParseSettings, TokenText) {
  struct Row {
    const char* reason;
    const wchar_t* text;
    const char* tree;
  };
  const Row rows[] = {
      {"nothing but blanks", L" \t\r\n", ""},
      {"key with two values, quoted blank, nested key", L"F a.ocx \"b c.exe\"; Group { Inner 1; }",
       "Group{Inner[1]} F[a.ocx|b c.exe]"},
      {"over several lines", L"a\n1\r\n\t2\n;b 3", "b[3] a[1|2]"},
      {"; without a key does nothing", L";;a 1;;;b;", "b a[1]"},
      {"empty quotes add nothing, as key and as value", L"\"\" a \"\" 1 \"\";", "a[1]"},
      {"a quoted key", L"\"a b\" 1;", "a b[1]"},
      {"quotes keep every delimiter", L"a \";{} \t\n\";", "a[;{} \t\n]"},
      {"a quote ends a token before it and begins one after it", L"a b\"c\"d;", "a[b|c|d]"},
      {"an open quote runs to the end", L"a \"b; c", "a[b; c]"},
      {"delimiters need no blanks", L"a{b 1;c{d 2}}e 3", "a[e|3]{c{d[2]} b[1]}"},
      {"a key goes on after its block", L"a { b; } 1; c;", "c a[1]{b}"},
      {"a second block is chained after the first", L"a { b; c; } { d; e; };", "a{c b e d}"},
      {"an empty block between two", L"a { b; } { } { c; };", "a{b c}"},
      {"{ without a key is skipped, its } ends the level", L"{ a 1; } b 2;", "a[1]"},
      {"a control character ends every level", L"a { b 1;\x01 c 2; } d 3;", "a{b[1]}"},
      {"a control character within a token", L"zz\x08zz;", "zz"},
      {"a control character in quotes is text", L"a \"\x01\";", "a[\x01]"},
      {"no comments, and all else is text", L"# \x0b; // \u20ac;", "//[\u20ac] #[\x0b]"},
  };
  for (const Row& row : rows) EXPECT_EQ(Parsed(row.text), row.tree) << row.reason;
}

TEST(ParseSettings, NeitherDepthNorLengthOfATextExhaustsTheStackOrTheTime) {
  WideString deep, ends(100000, L'}');
  for (int i = 0; i < 100000; ++i) deep += L"a{";
  // What follows levels that are too deep is read at its own level.
  EXPECT_TRUE(Parsed((deep + ends + L";after 1;").c_str()).starts_with("after[1] a{a{"));
  SettingsTree tree;
  ParseSettings(&tree, MString(WideView(deep)));
  int depth = 0;
  for (const SettingsNode* node = tree.documents->children; node != nullptr; node = node->children) ++depth;
  EXPECT_EQ(depth, kDeepestSettingsLevel + 1);
  // Many blocks for one key: the end of the chain is not searched for each.
  WideString wide = L"a";
  for (int i = 0; i < 200000; ++i) wide += L"{b}";
  ParseSettings(&tree, MString(WideView(wide)));
  int children = 0;
  for (const SettingsNode* node = tree.documents->children->children; node != nullptr; node = node->next) ++children;
  EXPECT_EQ(children, 200000);
}

TEST(FindSetting, FollowsDottedKeys) {
  SettingsTree tree;
  ParseSettings(&tree, MString(L"top 1; a { b { c 2; }; b { d 3; }; x.y 4; }; a { b { e 5; }; }; empty;"));
  const std::pair<const wchar_t*, const char*> rows[] = {
      {L"top", "1"},          {L"a.b.c", "2"},  // the second b is tried first and lacks it
      {L"a.b.d", "3"},        {L"a.b.e", "5"},  // in the other a
      {L"a.b", "(no value)"}, {L"empty", "(no value)"}, {L"a.b.z", "(none)"},
      {L"a.x.y", "(none)"},  // a name with a dot is out of reach
      {L"A", "(none)"},       {L"", "(none)"},          {L"a.", "(none)"},
      {L".a", "(none)"},      {L"top.1", "(none)"},  // values are not entries
  };
  for (const auto& [key, value] : rows) EXPECT_EQ(FirstValue(FindSetting(&tree, MString(key))), value) << Text(key);
  EXPECT_EQ(FindSetting(nullptr, MString(L"top")), nullptr);
  EXPECT_EQ(FindSetting(&tree, MString()), nullptr);
}

TEST(FindSetting, LaterTextWins) {
  SettingsTree tree;
  for (const wchar_t* const text : {L"a 1; a 2; only old;", L"a 3;", L""}) ParseSettings(&tree, MString(text));
  EXPECT_EQ(FirstValue(FindSetting(&tree, MString(L"a"))), "3");
  EXPECT_EQ(FirstValue(FindSetting(&tree, MString(L"only"))), "old");
}

TEST(FindSettingByPrefix, ANodeMatchesAKeyThatStartsWithItsName) {
  SettingsTree tree;
  ParseSettings(&tree, MString(L"Ignore { fire 1; chrome 2; };"));
  const std::pair<const wchar_t*, const char*> rows[] = {
      {L"Ignore.fire", "1"},     {L"Ignore.fir", "(none)"},    {L"Ignore.chromedriver", "2"},
      {L"Ignored.firefox", "1"}, {L"Ignor.firefox", "(none)"},
  };
  for (const auto& [key, value] : rows) {
    EXPECT_EQ(FirstValue(FindSettingByPrefix(&tree, MString(key))), value) << Text(key);
  }
  EXPECT_EQ(FindSetting(&tree, MString(L"Ignore.firefox")), nullptr);
}

TEST(LoadStringList, AppendsTheValuesInOrder) {
  SettingsTree tree;
  ParseSettings(&tree, MString(L"Files b a; Empty; Group { Files c; };"));
  MStringList list;
  EXPECT_TRUE(LoadStringList(&list, &tree, MString(L"Files")));
  EXPECT_TRUE(LoadStringList(&list, &tree, MString(L"Group.Files")));
  EXPECT_TRUE(LoadStringList(&list, &tree, MString(L"Empty")));
  EXPECT_FALSE(LoadStringList(&list, &tree, MString(L"Missing")));
  EXPECT_EQ(Keys(&list), (Lines{"b", "a", "c"}));
}
