// Settings text from bytes: parses it, walks the tree and looks every entry up by its dotted key. Two bytes make one
// unit when the first byte of the input is 0xFF, else each byte is one.
#include "engine/SettingsTree.h"
#include "fuzz/Require.h"

namespace {

WideString Units(const uint8_t* data, size_t size) {
  WideString text;
  if (size > 0 && data[0] == 0xFF) {
    for (size_t i = 1; i + 1 < size; i += 2) text.push_back(static_cast<wchar_t>(data[i] | data[i + 1] << 8));
  } else {
    for (size_t i = 0; i < size; ++i) text.push_back(static_cast<wchar_t>(data[i]));
  }
  return text;
}

// Every entry of a level that can be reached by its key is found by it: itself, or one in front of it of the same name.
// Counts down `visits`, since a look-up for each entry of a large tree would take the time of many inputs.
void CheckLevel(const SettingsTree& tree, const SettingsNode* level, const WideString& path, int depth, int& visits) {
  Require(level == nullptr || depth <= kDeepestSettingsLevel);
  for (const SettingsNode* node = level; node != nullptr; node = node->next) {
    Require(!node->name.IsEmpty());
    for (const SettingsNode* value = node->values; value != nullptr; value = value->next) {
      Require(!value->name.IsEmpty() && value->values == nullptr && value->children == nullptr);
    }
    const WideString key = path + WideString(node->name.View());
    if (node->name.View().find(L'.') == WideView::npos && --visits > 0) {
      const SettingsNode* const found = FindSetting(&tree, MString(WideView(key)));
      Require(found != nullptr && found->name.Equals(node->name));
      Require(FindSettingByPrefix(&tree, MString(WideView(key + L"x"))) != nullptr);
      CheckLevel(tree, node->children, key + L".", depth + 1, visits);
    } else {
      int none = 0;
      CheckLevel(tree, node->children, WideString(), depth + 1, none);
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const MString text{WideView(Units(data, size))};
  SettingsTree tree;
  ParseSettings(&tree, text);
  ParseSettings(&tree, MString(text.Data()));  // a second document, in front of the first
  int visits = 64;
  CheckLevel(tree, tree.documents->children, WideString(), 0, visits);
  MStringList list;
  (void)LoadStringList(&list, &tree, MString(L"a.b"));
  return 0;
}
