#include "engine/SettingsTree.h"

#include <memory>
#include <utility>

namespace {

constexpr wchar_t kQuote = L'"';

// Deletes a chain node by node: its length is the text's choice, its depth is bounded.
void DeleteChain(SettingsNode* node) {
  while (node != nullptr) {
    SettingsNode* const next = std::exchange(node->next, nullptr);
    delete node;
    node = next;
  }
}

SettingsNode* NewNode(WideView name) {
  auto node = std::make_unique<SettingsNode>();
  node->name = MString(name);
  return node.release();
}

// Reads levels of the text. A front cut of a view is free, so the text is never copied but for the tokens kept.
class Parser {
 public:
  explicit Parser(WideView text) : rest_(text) {}

  // One level's entries, newest first. Stops in front of the "}" that ends it, at a control character, or at the end.
  SettingsNode* ReadLevel(int depth) {
    SettingsNode* entries = nullptr;
    SettingsNode* key = nullptr;
    SettingsNode** lastValue = nullptr;
    bool quoted = false;
    for (;;) {
      const WideView token = TakeToken(quoted);
      if (!token.empty() && key == nullptr) {
        key = NewNode(token);
        key->next = entries;
        entries = key;
        lastValue = &key->values;
      } else if (!token.empty()) {
        *lastValue = NewNode(token);
        lastValue = &(*lastValue)->next;
      }
      if (rest_.empty()) return entries;
      const wchar_t delimiter = rest_.front();
      if (delimiter == L'}' || delimiter < 9) return entries;
      rest_.remove_prefix(1);
      if (delimiter == kQuote) quoted = !quoted;
      if (delimiter == L';') key = nullptr;
      if (delimiter == L'{' && key != nullptr && depth < kDeepestSettingsLevel) {
        AppendChildren(key, ReadLevel(depth + 1));
        if (!rest_.empty() && rest_.front() == L'}') rest_.remove_prefix(1);
      }
    }
  }

 private:
  WideView TakeToken(bool quoted) {
    size_t length = 0;
    while (length < rest_.size() && !EndsToken(rest_[length], quoted)) ++length;
    const WideView token = rest_.substr(0, length);
    rest_.remove_prefix(length);
    return token;
  }

  static bool EndsToken(wchar_t unit, bool quoted) {
    if (quoted || unit == kQuote) return unit == kQuote;
    return unit < 9 || unit == L' ' || unit == L'\t' || unit == L'\r' || unit == L'\n' || unit == L';' ||
           unit == L'{' || unit == L'}';
  }

  static void AppendChildren(SettingsNode* key, SettingsNode* level) {
    SettingsNode** end = &key->children;
    while (*end != nullptr) end = &(*end)->next;
    *end = level;
  }

  WideView rest_;
};

template <class Matches>
const SettingsNode* Find(const SettingsNode* level, WideView key, Matches matches) {
  const size_t dot = key.find(L'.');
  const WideView head = key.substr(0, dot);
  for (const SettingsNode* node = level; node != nullptr; node = node->next) {
    if (!matches(head, node->name.View())) continue;
    if (dot == WideView::npos) return node;
    if (const SettingsNode* const found = Find(node->children, key.substr(dot + 1), matches)) return found;
  }
  return nullptr;
}

template <class Matches>
const SettingsNode* FindInDocuments(const SettingsTree* tree, const MString& key, Matches matches) {
  if (tree == nullptr) return nullptr;
  for (const SettingsNode* document = tree->documents; document != nullptr; document = document->next) {
    if (const SettingsNode* const found = Find(document->children, key.View(), matches)) return found;
  }
  return nullptr;
}

}  // namespace

SettingsNode::~SettingsNode() {
  DeleteChain(std::exchange(values, nullptr));
  DeleteChain(std::exchange(children, nullptr));
  DeleteChain(std::exchange(next, nullptr));
}

void ParseSettings(SettingsTree* tree, const MString& text) {
  SettingsNode* const document = NewNode(WideView());
  document->children = Parser(text.View()).ReadLevel(0);
  document->next = tree->documents;
  tree->documents = document;
}

const SettingsNode* FindSetting(const SettingsTree* tree, const MString& key) {
  return FindInDocuments(tree, key, [](WideView part, WideView name) { return part == name; });
}

const SettingsNode* FindSettingByPrefix(const SettingsTree* tree, const MString& key) {
  return FindInDocuments(tree, key, [](WideView part, WideView name) { return part.starts_with(name); });
}

bool LoadStringList(MStringList* list, const SettingsTree* tree, const MString& name) {
  const SettingsNode* const setting = FindSetting(tree, name);
  if (setting == nullptr) return false;
  for (const SettingsNode* value = setting->values; value != nullptr; value = value->next) list->Add(value->name);
  return true;
}
