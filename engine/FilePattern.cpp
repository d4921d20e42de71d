#include "engine/FilePattern.h"

bool MatchesPattern(const MString& name, const MString& pattern) {
  const WideView whole = pattern.View();
  const size_t first = whole.find(L':');
  const WideView prefix = whole.substr(0, first);
  const WideView suffix = first == WideView::npos ? WideView() : whole.substr(whole.rfind(L':') + 1);
  return name.View().starts_with(prefix) && name.View().ends_with(suffix);
}

MString FindMatchingFile(const MStringList& entries, const MString& directory, const MString& pattern) {
  MString found(L"");
  for (const auto* entry = entries.Head(); entry != nullptr; entry = entry->next) {
    if (!MatchesPattern(entry->key, pattern)) continue;
    found = directory;
    found.AppendPath(L'\\', entry->key);
  }
  return found;
}

void CollectMatches(const MStringList& entries, const MString& directory, const MString& pattern,
                    MStringList& matches) {
  for (const auto* entry = entries.Head(); entry != nullptr; entry = entry->next) {
    if (!MatchesPattern(entry->key, pattern)) continue;
    MString path = directory;
    path.Append(MString(L"\\"));
    path.Append(entry->key);
    matches.Add(path);
  }
}
