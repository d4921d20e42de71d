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
  const std::tuple<const char*, const wchar_t*, const char*> rows[] = {
      {"key with two values, quoted blank, nested key", L"F a.ocx \"b c.exe\"; Group { Inner 1; }",
       "Group{Inner[1]} F[a.ocx|b c.exe]"},
      {"over several lines", L"a\n1\r\n\t2\n;b 3", "b[3] a[1|2]"},
      {"; without a key does nothing", L";;a 1;;;b;", "b a[1]"},
      {"empty quotes add nothing, as key and as value", L"\"\" a \"\" 1 \"\";", "a[1]"},
      {"quotes keep every delimiter", L"a \";{} \t\n\";", "a[;{} \t\n]"},
      {"a quote ends a token before it and begins one after it", L"a b\"c\"d;", "a[b|c|d]"},
      {"a quoted key, and an open quote runs to the end", L"\"a b\" \"b; c", "a b[b; c]"},
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
  for (const auto& [reason, text, tree] : rows) EXPECT_EQ(Parsed(text), tree) << reason;
}

TEST(ParseSettings, NeitherDepthNorLengthOfATextExhaustsTheStackOrTheTime) {
  WideString deep, ends(100000, L'}');
  for (int i = 0; i < 100000; ++i) deep += L"a{";
  // What follows levels that are too deep is read at its own level.
  EXPECT_TRUE(Parsed((deep + ends + L";after 1;").c_str()).starts_with("after[1] a{a{"));
  // Many blocks for one key: the end of the chain is not searched for each.
  WideString wide = L"a";
  for (int i = 0; i < 200000; ++i) wide += L"{b}";
  EXPECT_EQ(Parsed(wide.c_str()).size(), std::string("a{b}").size() + size_t{199999} * 2);
}

TEST(FindSetting, FollowsDottedKeysAndLaterTextWins) {
  SettingsTree tree;
  ParseSettings(&tree,
                MString(L"top 0; a { b { c 2; }; b { d 3; }; x.y 4; }; a { b { e 5; }; }; empty; Ign { fire 7; };"));
  ParseSettings(&tree, MString(L"top 1;"));
  ParseSettings(&tree, MString(L""));
  const std::tuple<const wchar_t*, const char*, const char*> rows[] = {
      // found whole, and by a prefix
      {L"top", "1", "1"},
      {L"a.b.c", "2", "2"},  // the second b is tried first and lacks it
      {L"a.b.e", "5", "5"},  // in the other a
      {L"a.b", "(no value)", "(no value)"},
      {L"a.b.z", "(none)", "(none)"},
      {L"a.x.y", "(none)", "(none)"},  // a name with a dot is out of reach
      {L"A", "(none)", "(none)"},
      {L"", "(none)", "(none)"},
      {L"a.", "(none)", "(none)"},
      {L".a", "(none)", "(none)"},
      {L"top.1", "(none)", "(none)"},      // values are not entries
      {L"Ignore.firefox", "(none)", "7"},  // a node matches a key that begins with its name
      {L"Ig.fire", "(none)", "(none)"},
      {L"Ign.fir", "(none)", "(none)"},
  };
  for (const auto& [key, value, byPrefix] : rows) {
    EXPECT_EQ(FirstValue(FindSetting(&tree, MString(key))), value) << Text(key);
    EXPECT_EQ(FirstValue(FindSettingByPrefix(&tree, MString(key))), byPrefix) << Text(key);
  }
  EXPECT_EQ(FindSetting(nullptr, MString(L"top")), nullptr);
  EXPECT_EQ(FindSetting(&tree, MString()), nullptr);
}
