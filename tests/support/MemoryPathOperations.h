// A Windows file system as the path policy sees it, in memory: full path names with their folding, attributes, links of
// all kinds, short names. It also opens a path the way the platform would, to tell where it really leads.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "broker/PathOperations.h"
#include "engine/WideText.h"

class MemoryPathOperations final : public PathOperations {
 public:
  // The user "A" with the player's directories, a few of somebody else's, and the links that the corpus names.
  MemoryPathOperations();

  std::optional<WideString> FullPath(WideView path) override;
  std::optional<WideString> UpperCase(WideView text) override { return Upper(text); }
  std::optional<uint32_t> Attributes(WideView path) override {
    const Node* const node = path.size() < 260 ? NodeAt(path) : nullptr;
    return node == nullptr ? std::nullopt : std::optional(node->attributes);
  }
  std::optional<uint32_t> AttributesEx(WideView path) override { return Attributes(path); }
  std::optional<WideString> LongPath(WideView path) override;
  std::optional<WideString> ObjectLinkTarget(WideView path) override { return Find(objectLinks, Upper(path)); }
  std::optional<std::vector<uint8_t>> ReadReparsePoint(WideView path) override {
    const Node* const node = NodeAt(path);
    return node == nullptr ? std::nullopt : node->reparseData;
  }
  std::optional<WideString> Folder(ShellFolder folder) override { return Find(folders, folder); }
  std::optional<WideString> TempPath() override { return WideString(tempPath); }

  void AddLink(WideView path, WideView target, bool mountPoint = false);
  void AddObjectLink(WideView path, WideView target) { objectLinks[Upper(path)] = target; }

  // Where creating a file at `path` would put it: upper-case, all links followed, short names made long. Nothing when
  // the platform would refuse, because a directory is missing, a chain too long or the name impossible.
  [[nodiscard]] std::optional<WideString> OpenForReal(WideView path);
  // Whether what was opened there is the broker's clients' to write.
  [[nodiscard]] static bool LiesUnderAWritableRoot(WideView opened, bool localAppData);

  static constexpr WideView kPlayerRoot = L"C:\\USERS\\A\\APPDATA\\ROAMING\\HALCYONICS\\LUMEN PLAYER";

  static WideString Upper(WideView text);

  WideString tempPath = L"C:\\Users\\A\\AppData\\Local\\Temp\\";
  std::map<ShellFolder, WideString> folders;
  // Whether full names fold dots behind "\\?\" too, although opening such a path does not.
  bool foldsVerbatim = true;

 private:
  struct Node {
    WideString name;  // as stored
    uint32_t attributes = 0;
    WideString target;
    std::optional<std::vector<uint8_t>> reparseData;
  };
  template <class Map>
  static std::optional<WideString> Find(const Map& map, const typename Map::key_type& key) {
    const auto found = map.find(key);
    return found == map.end() ? std::nullopt : std::optional(found->second);
  }
  // A directory or link as the list of them has it.
  void Add(const WideString& item);
  void AddReparsePoint(WideView path, std::optional<std::vector<uint8_t>> data, bool file = false);
  // The absolute path, without a prefix, that the platform's calls make of `path`.
  std::optional<WideString> Opened(WideView path);
  // What is there, a link itself included; null when nothing is.
  [[nodiscard]] const Node* NodeAt(WideView path);
  // The node's key after links and short names of everything above it, or nothing.
  std::optional<WideString> Locate(WideView path, bool followLast, int depth = 0) const;

  std::map<WideString, Node> nodes;
  std::map<WideString, WideString> shortNames;  // of components, to the upper-case long ones
  std::map<WideString, WideString> objectLinks;
};

// A row of tests/data/paths.txt, the one list that the unit test and the fuzz seeds share.
struct PathRow {
  bool localAppData = false;
  std::string flags;  // of "WwCS", see the file
  WideString path;    // filled in for the user above
  std::string reason;
};

// All rows; an empty list when the file cannot be read.
[[nodiscard]] std::vector<PathRow> ReadPathCorpus();
