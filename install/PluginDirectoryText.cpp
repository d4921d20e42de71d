#include "install/PluginDirectoryText.h"

std::optional<MString> PluginDirectoryFrom(const MString& text) {
  if (text.EndsWith(L".exe")) {
    MString directory = text;
    (void)directory.CutTail("\\");
    directory.AppendPath(L'\\', L"Program\\Plugins");
    return directory;
  }
  if (text.EndsWith(L"\\Plugins")) return text;
  return std::nullopt;
}
