// The settings dictionary that a host hands to the module: documents of nested keys with values, parsed from a token
// text.
//
//     FilenamesAX  a.ocx "b c.exe";            a key with two values
//     Group { Inner 1; Other { Deep yes; }; };  nested keys, looked up as Group.Other.Deep
//
// Lines have no meaning of their own and there are no comments. Host's thread only.
#pragma once

#include "engine/MString.h"
#include "engine/MStringList.h"

struct SettingsNode {
  SettingsNode* next = nullptr;
  MString name;
  SettingsNode* values = nullptr;    // nodes of which only name and next are used
  SettingsNode* children = nullptr;  // entries of the level below, the last one of the text first

  SettingsNode() = default;
  SettingsNode(const SettingsNode&) = delete;
  SettingsNode& operator=(const SettingsNode&) = delete;
  // Deletes everything below and behind it.
  ~SettingsNode();
};

// The head of the list of documents, the newest first, so that later documents are searched first.
struct SettingsTree {
  SettingsNode* documents = nullptr;

  SettingsTree() = default;
  SettingsTree(const SettingsTree&) = delete;
  SettingsTree& operator=(const SettingsTree&) = delete;
  ~SettingsTree() { delete documents; }
};

// Levels deeper than this are read as if they belonged to the deepest one, so that no text can exhaust the stack.
constexpr int kDeepestSettingsLevel = 200;

// Parses `text` into a new document at the front.
void ParseSettings(SettingsTree* tree, const MString& text);
// The first node that matches all of the dotted `key`, or null. A name that occurs twice is tried in turn, so a later
// sibling is reached when an earlier one fails further down. Owned by the tree.
[[nodiscard]] const SettingsNode* FindSetting(const SettingsTree* tree, const MString& key);
// The same, but a node matches a part of the key that starts with its name.
[[nodiscard]] const SettingsNode* FindSettingByPrefix(const SettingsTree* tree, const MString& key);
// Appends the values of the setting `name` to `list`. False when there is no such setting; one without values adds
// nothing.
[[nodiscard]] bool LoadStringList(MStringList* list, const SettingsTree* tree, const MString& name);
