// A Windows file system as the path policy sees it, in memory: full path names with their folding, attributes, links of
// all kinds, short names. It also opens a path the way the platform would, to tell where it really leads.
#pragma once

#include <map>
#include <optional>
#include <vector>

#include "broker/PathOperations.h"
#include "engine/WideText.h"

class MemoryPathOperations final : public PathOperations {
 public:
  // The user "A" with the player's directories, a few of somebody else's, and the links that the corpus names.
  MemoryPathOperations();

  std::optional<WideString> FullPath(WideView path) override;
  std::optional<WideString> UpperCase(WideView text) override { return Upper(text); }
  std::optional<uint32_t> Attributes(WideView path) override;
  std::optional<uint32_t> AttributesEx(WideView path) override { return Attributes(path); }
  std::optional<WideString> LongPath(WideView path) override;
  std::optional<WideString> ObjectLinkTarget(WideView objectPath) override;
  std::optional<std::vector<uint8_t>> ReadReparsePoint(WideView path) override;
  std::optional<WideString> Folder(ShellFolder folder) override;
  std::optional<WideString> TempPath() override { return WideString(tempPath); }

  void AddDirectory(WideView path);
  void AddFile(WideView path);
  void AddLink(WideView path, WideView target, bool mountPoint = false);
  void AddReparsePoint(WideView path, std::optional<std::vector<uint8_t>> data, bool file = false);
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
  // A directory or link as the list of them has it.
  void Add(const WideString& item);
  // The absolute path, without a prefix, that the platform's calls make of `path`.
  std::optional<WideString> Opened(WideView path);
  // The node's key after links and short names of everything above it, or nothing.
  std::optional<WideString> Locate(WideView path, bool followLast, int depth = 0) const;

  std::map<WideString, Node> nodes;
  std::map<WideString, WideString> shortNames;  // of last components, to the upper-case long ones
  std::map<WideString, WideString> objectLinks;
};

// Bytes as the platform stores a link.
[[nodiscard]] std::vector<uint8_t> MakeReparseData(uint32_t tag, WideView substitute);
