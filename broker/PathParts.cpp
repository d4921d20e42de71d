#include "broker/PathParts.h"

PathParts SplitPath(WideView path) {
  PathParts parts;
  if (path.size() >= 2 && path[1] == L':') {
    parts.drive = path.substr(0, 2);
    path.remove_prefix(2);
  }
  const size_t slash = path.find_last_of(L"\\/");
  if (slash != WideView::npos) {
    parts.directory = path.substr(0, slash + 1);
    path.remove_prefix(slash + 1);
  }
  const size_t dot = path.rfind(L'.');
  parts.name = path.substr(0, dot);
  if (dot != WideView::npos) parts.extension = path.substr(dot);
  return parts;
}
