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

// One level's entries, newest first, with the place where a further level can be chained to them.
struct Level {
  SettingsNode* entries = nullptr;
  SettingsNode** end = nullptr;  // null while there is no entry
};

// Reads levels of the text. A front cut of a view is free, so the text is never copied but for the tokens kept.
class Parser {
 public:
  explicit Parser(WideView text) : rest_(text) {}

  // Stops in front of the "}" that ends the level, at a control character, or at the end.
  Level ReadLevel(int depth) {
    Level level;
    SettingsNode* key = nullptr;
    SettingsNode** lastValue = nullptr;
    SettingsNode** lastChild = nullptr;
    int flattened = 0;  // open braces of levels that are too deep to be their own
    bool quoted = false;
    for (;;) {
      const WideView token = TakeToken(quoted);
      if (!token.empty() && key == nullptr) {
        key = AddEntry(level, token);
        lastValue = &key->values;
        lastChild = &key->children;
      } else if (!token.empty()) {
        *lastValue = NewNode(token);
        lastValue = &(*lastValue)->next;
      }
      if (rest_.empty() || rest_.front() < 9) return level;
      const wchar_t delimiter = rest_.front();
      if (delimiter == L'}' && flattened == 0) return level;
      rest_.remove_prefix(1);
      if (delimiter == kQuote) quoted = !quoted;
      if (delimiter == L';') key = nullptr;
      if (delimiter == L'}') --flattened;
      if (delimiter != L'{' || key == nullptr) continue;
      if (depth == kDeepestSettingsLevel) {
        ++flattened;
      } else {
        ReadChildren(lastChild, depth);
      }
    }
  }

 private:
  // Reads the level below and chains it to what `end` points at, which it moves on. Every text, also one of nothing but
  // blocks for one key, is read in time that grows with its length.
  void ReadChildren(SettingsNode**& end, int depth) {
    const Level below = ReadLevel(depth + 1);
    *end = below.entries;
    if (below.end != nullptr) end = below.end;
    if (!rest_.empty() && rest_.front() == L'}') rest_.remove_prefix(1);
  }

  static SettingsNode* AddEntry(Level& level, WideView name) {
    SettingsNode* const entry = NewNode(name);
    entry->next = level.entries;
    if (level.entries == nullptr) level.end = &entry->next;
    level.entries = entry;
    return entry;
  }

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
  document->children = Parser(text.View()).ReadLevel(0).entries;
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
