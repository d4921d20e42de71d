#include "tests/support/MemoryPathOperations.h"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <utility>

#include "broker/BrokerPathPolicy.h"

namespace {

constexpr WideView kPlayer = L"C:\\Users\\A\\AppData\\Roaming\\Halcyonics\\Lumen Player";

// The directories and links, one between two bars: "NAME>TARGET" is a symbolic link, "NAME=TARGET" a mount point.
// Without a drive a name lies in the player's directory, which "^" stands for in upper case in targets. Names with a
// blank or a dot at the end only a verbatim path can make, each beside the plain one that it is mistaken for.
constexpr WideView kDisk =
    L"sub|#SharedObjects\\X|corva.example\\sub|corva.examples|corva.exampl|long directory|trap|pit|"
    L"C:\\Users\\A\\AppData\\Roaming\\Corva\\Lumen Player\\Icon Cache|C:\\Users\\A\\AppData\\Local\\Temp\\Low\\sub|"
    L"C:\\Users\\A\\AppData\\Local\\Halcyonics\\Lumen Player\\corva.example|C:\\Users\\A\\AppData\\Roaming\\Other|"
    L"C:\\Users\\A\\AppData\\Local\\Corva\\Lumen Player|C:\\Windows\\System32\\Halcyons\\Lumen|C:\\Outside\\sub|"
    L"C:\\Windows\\SysWOW64\\Halcyons\\Lumen|C:\\Users\\A\\AppData\\Roaming\\Halcyonics.\\Lumen Player|"
    L"link-out>\\??\\C:\\Outside|mount-out=\\??\\C:\\Outside|LINK-UP>\\??\\^\\SUB|mount-up=\\??\\^\\SUB|"
    L"link-in>\\??\\C:\\Users\\A\\AppData\\Roaming\\Halcyonics\\Lumen Player\\sub|link-settings>\\??\\^\\CORVA.EXAMPLE|"
    L"cycle-a>^\\CYCLE-B|cycle-b>^\\CYCLE-A|self>^\\SELF|link-share>\\??\\UNC\\server\\share|link-token>^S|"
    L"link-relative>..\\..\\Outside|trap >\\??\\C:\\Outside|pit.>\\??\\C:\\Outside|link-trap>^\\TRAP |link-pit>^\\PIT.|"
    L"link-up-dots>^\\SUB\\..\\..\\..|C:\\Users\\A\\AppData\\Local\\Temp\\Low\\link-out>\\??\\C:\\Outside|"
    L"chain16>^\\K15|chain17>^\\K16|chain16out>^\\O15|chain17out>^\\O16|k1>^\\SUB|o1>C:\\OUTSIDE|t1>^\\CORVA.EXAMPLE|"
    L"chain17settings>^\\T16|C:\\Users\\A\\AppData\\Local\\Temp\\Low\\chain17out>^\\O16";

bool IsSlash(wchar_t unit) {
  return unit == L'\\' || unit == L'/';
}

std::vector<WideString> Split(WideView path, WideView at = L"\\/") {
  std::vector<WideString> parts;
  while (!path.empty()) {
    const size_t end = std::min(path.find_first_of(at), path.size());
    if (end > 0) parts.emplace_back(path.substr(0, end));
    path.remove_prefix(std::min(end + 1, path.size()));
  }
  return parts;
}

bool IsDeviceName(WideView component) {
  WideString name = MemoryPathOperations::Upper(component.substr(0, component.find_first_of(L".:")));
  while (name.ends_with(L' ')) name.pop_back();
  for (const WideView device : {L"NUL", L"CON", L"AUX", L"PRN"}) {
    if (name == device) return true;
  }
  return name.size() == 4 && (name.starts_with(L"COM") || name.starts_with(L"LPT")) && name[3] >= L'1' &&
         name[3] <= L'9';
}

// The root that no ".." climbs above, and what follows it.
struct Rooted {
  WideString root;
  WideString rest;
  bool device = false;
};

Rooted TakeRoot(WideView path) {
  const bool doubled = path.size() >= 2 && IsSlash(path[0]) && IsSlash(path[1]);
  if (doubled && path.size() >= 4 && (path[2] == L'?' || path[2] == L'.') && IsSlash(path[3])) {
    return {WideString(L"\\\\") + path[2] + L"\\", WideString(path.substr(4)), true};
  }
  if (doubled) {
    const std::vector<WideString> parts = Split(path.substr(2));
    WideString root = L"\\\\" + (parts.empty() ? WideString() : parts[0]);
    WideString rest;
    for (size_t i = 1; i < parts.size(); ++i) (i == 1 ? root += L"\\" + parts[i] : rest += L"\\" + parts[i]);
    return {root + (parts.size() > 1 ? L"\\" : L""), rest};
  }
  if (path.size() >= 2 && path[1] == L':') {
    const WideString drive = WideString(path.substr(0, 2)) + L"\\";
    if (path.size() >= 3 && IsSlash(path[2])) return {drive, WideString(path.substr(2))};
    const bool current = ToUpperAscii(path[0]) == L'C';
    return {drive, (current ? L"Windows\\System32\\" : L"") + WideString(path.substr(2))};
  }
  if (!path.empty() && IsSlash(path[0])) return {L"C:\\", WideString(path)};
  return {L"C:\\", L"Windows\\System32\\" + WideString(path)};
}

constexpr std::pair<std::string_view, WideView> kTokens[] = {
    {"{P}", kPlayer},
    {"{V}", L"C:\\Users\\A\\AppData\\Roaming\\Corva\\Lumen Player"},
    {"{R}", L"C:\\Users\\A\\AppData\\Roaming"},
    {"{L}", L"C:\\Users\\A\\AppData\\Local"},
    {"{T}", L"C:\\Users\\A\\AppData\\Local\\Temp\\Low"},
    {"{S}", L"C:\\Windows\\System32"},
    {"{W}", L"C:\\Windows\\SysWOW64"},
    {"{bar}", L"|"},
};

WideString FillIn(const std::string& text) {
  WideString path = FromUtf8(text);
  for (const auto& [name, value] : kTokens) {
    const WideString token = WidenAscii(name);
    for (size_t at; (at = path.find(token)) != WideString::npos;) path.replace(at, token.size(), value);
  }
  for (const WideView name : {L"{pad:", L"{deep:"}) {
    const size_t at = path.find(name);
    if (at == WideString::npos) continue;
    const size_t end = path.find(L'}', at);
    const size_t wanted = std::stoul(ToUtf8(path.substr(at + name.size(), end - at - name.size())));
    const size_t others = path.size() - (end + 1 - at);
    WideString filling;
    while (filling.size() + (name == L"{pad:" ? others : 0) < wanted) {
      filling += name == L"{deep:" && filling.size() % 20 == 19 ? L'\\' : L'x';
    }
    path.replace(at, end + 1 - at, filling);
  }
  return path;
}

// Bytes as the platform stores a link.
std::vector<uint8_t> MakeReparseData(uint32_t tag, WideView substitute) {
  const bool symbolic = tag == 0xA000000C;
  const auto bytes = static_cast<uint16_t>(substitute.size() * 2);
  std::vector<uint16_t> words = {static_cast<uint16_t>(tag),
                                 static_cast<uint16_t>(tag >> 16),
                                 static_cast<uint16_t>(bytes + (symbolic ? 12 : 8)),
                                 0,
                                 0,
                                 bytes,
                                 bytes,
                                 0};
  if (symbolic) words.insert(words.end(), 2, 0);
  words.insert(words.end(), substitute.begin(), substitute.end());
  const auto* const data = reinterpret_cast<const uint8_t*>(words.data());
  return {data, data + words.size() * 2};
}

}  // namespace

bool MemoryPathOperations::LiesUnderAWritableRoot(WideView opened, bool localAppData) {
  const auto lies = [opened](WideView root) { return BrokerPathPolicy::IsPathUnderRoot(opened, root); };
  const WideString player(localAppData ? L"C:\\USERS\\A\\APPDATA\\LOCAL\\HALCYONICS\\LUMEN PLAYER" : kPlayerRoot);
  return (lies(player) || lies(L"C:\\USERS\\A\\APPDATA\\ROAMING\\CORVA\\LUMEN PLAYER") ||
          lies(L"C:\\USERS\\A\\APPDATA\\LOCAL\\TEMP\\LOW")) &&
         !lies(player + L"\\CORVA.EXAMPLE");
}

WideString MemoryPathOperations::Upper(WideView text) {
  WideString upper(text);
  std::transform(upper.begin(), upper.end(), upper.begin(), ToUpperAscii);
  return upper;
}

MemoryPathOperations::MemoryPathOperations() {
  folders = {{ShellFolder::RoamingAppData, L"C:\\Users\\A\\AppData\\Roaming"},
             {ShellFolder::LocalAppData, L"C:\\Users\\A\\AppData\\Local"},
             {ShellFolder::System, L"C:\\Windows\\System32"},
             {ShellFolder::SystemX86, L"C:\\Windows\\SysWOW64"}};
  const WideString player(kPlayer);
  const WideString upper(MemoryPathOperations::kPlayerRoot);
  for (const WideString& item : Split(kDisk, L"|")) Add(item);
  nodes[L"C:\\WINDOWS\\SYSTEM32\\HALCYONS\\LUMEN\\HMS.CFG"] = Node{L"hms.cfg", 0x20, {}, {}};
  shortNames = {{L"LUMENP~1", L"LUMEN PLAYER"},
                {L"HALCYO~1", L"HALCYONICS"},
                {L"LONGDI~1", L"LONG DIRECTORY"},
                {L"CORVA~1.EXA", L"CORVA.EXAMPLE"}};

  // The object manager takes a name with a null in it, of which the platform's calls see the beginning.
  AddLink(player + L"\\link-null", WideString(L"\\??\\") + upper + L"\\SUB" + WideString(1, L'\0') + L"\\X");
  AddReparsePoint(player + L"\\broken", std::nullopt);
  AddReparsePoint(player + L"\\other-tag", MakeReparseData(0x8000001B, L"\\??\\C:\\Outside"));
  std::vector<uint8_t> hostile = MakeReparseData(0xA000000C, L"\\??\\C:\\Outside");
  hostile[10] = 0xFE;
  hostile[11] = 0xFF;  // a name longer than the data
  AddReparsePoint(player + L"\\hostile", hostile);
  AddReparsePoint(player + L"\\file-link.sol", MakeReparseData(0xA000000C, L"\\??\\C:\\Outside\\evil.sol"), true);
  nodes[Upper(player + L"\\file-link.sol")].target = L"C:\\Outside\\evil.sol";

  // k16 -> k15 -> ... -> k1 -> a directory inside; o16 -> ... -> o1 -> outside; t16 -> ... -> t1 -> the settings.
  for (int n = 2; n <= 16; ++n) {
    for (const char* const letter : {"K", "O", "T"}) {
      Add(WidenAscii(letter + std::to_string(n) + ">^\\" + letter + std::to_string(n - 1)));
    }
  }
}

void MemoryPathOperations::Add(const WideString& item) {
  const size_t arrow = item.find_first_of(L">=");
  WideString name = item.substr(0, arrow);
  if (name.find(L':') == WideString::npos) name = WideString(kPlayer) + L"\\" + name;
  if (arrow == WideString::npos) {
    WideString key;
    for (const WideString& part : Split(name)) {
      key += (key.empty() ? L"" : L"\\") + Upper(part);
      nodes.try_emplace(key, Node{part, kAttributeDirectory, {}, {}});
    }
    return;
  }
  WideString target = item.substr(arrow + 1);
  if (const size_t inside = target.find(L'^'); inside != WideString::npos) target.replace(inside, 1, kPlayerRoot);
  AddLink(name, target, item[arrow] == L'=');
}

void MemoryPathOperations::AddLink(WideView path, WideView target, bool mountPoint) {
  AddReparsePoint(path, MakeReparseData(mountPoint ? 0xA0000003 : 0xA000000C, target));
  nodes[Upper(path)].target = target.starts_with(L"\\??\\") ? target.substr(4) : target;
}

void MemoryPathOperations::AddReparsePoint(WideView path, std::optional<std::vector<uint8_t>> data, bool file) {
  const uint32_t kind = file ? 0x20 : kAttributeDirectory;
  nodes[Upper(path)] = Node{Split(path).back(), kind | kAttributeReparsePoint, {}, std::move(data)};
}

std::optional<WideString> MemoryPathOperations::FullPath(WideView path) {
  if (!foldsVerbatim && path.starts_with(L"\\\\?\\")) return WideString(path);
  while (!path.empty() && path.back() == L' ') path.remove_suffix(1);
  if (path.empty()) return std::nullopt;
  const Rooted rooted = TakeRoot(path);
  std::vector<WideString> parts;
  const std::vector<WideString> given = Split(rooted.rest);
  for (size_t i = 0; i < given.size(); ++i) {
    WideString part = given[i];
    const bool last = i + 1 == given.size() && !IsSlash(rooted.rest.back());
    if (part == L".") continue;
    if (part == L"..") {
      if (!parts.empty()) parts.pop_back();
      continue;
    }
    if (!rooted.device && last && IsDeviceName(part)) return L"\\\\.\\" + part.substr(0, part.find_first_of(L".: "));
    if (last) {
      while (part.ends_with(L'.') || part.ends_with(L' ')) part.pop_back();
    } else if (part.ends_with(L'.')) {
      part.pop_back();
    }
    if (!part.empty()) parts.push_back(part);
  }
  WideString full = rooted.root;
  for (size_t i = 0; i < parts.size(); ++i) full += (i == 0 ? L"" : L"\\") + parts[i];
  // Dots and blanks at the end go last, also those of a component that became the last one by folding.
  const bool slashed = !rooted.rest.empty() && IsSlash(rooted.rest.back());
  while (!slashed && full.size() > rooted.root.size() && (full.ends_with(L'.') || full.ends_with(L' ')))
    full.pop_back();
  if (slashed && !full.ends_with(L'\\')) full += L'\\';
  if (full.size() >= 1040) return std::nullopt;
  return full;
}

// Every function that takes a file's name folds it first, save behind the prefix that turns that off.
std::optional<WideString> MemoryPathOperations::Opened(WideView path) {
  if (path.find(L'\0') != WideView::npos) return std::nullopt;
  if (!path.starts_with(L"\\\\?\\")) return FullPath(path);
  if (path.find(L'/') != WideView::npos) return std::nullopt;
  return WideString(path.substr(4));
}

std::optional<WideString> MemoryPathOperations::Locate(WideView path, bool followLast, int depth) const {
  if (depth > 63) return std::nullopt;
  const std::vector<WideString> parts = Split(path);
  WideString key;
  for (size_t i = 0; i < parts.size(); ++i) {
    const WideString part = Upper(parts[i]);
    key += (key.empty() ? L"" : L"\\") + Find(shortNames, part).value_or(part);
    const auto node = nodes.find(key);
    if (node == nodes.end()) return std::nullopt;
    if (node->second.target.empty() || (i + 1 == parts.size() && !followLast)) continue;
    WideString rest = node->second.target;
    for (size_t j = i + 1; j < parts.size(); ++j) rest += L"\\" + parts[j];
    return Locate(rest, followLast, depth + 1);
  }
  return key;
}

const MemoryPathOperations::Node* MemoryPathOperations::NodeAt(WideView path) {
  const std::optional<WideString> opened = Opened(path);
  const std::optional<WideString> key = opened ? Locate(*opened, false) : std::nullopt;
  const auto node = key ? nodes.find(*key) : nodes.end();
  return node == nodes.end() ? nullptr : &node->second;
}

std::optional<WideString> MemoryPathOperations::LongPath(WideView path) {
  if (!Attributes(path)) return std::nullopt;
  WideString key, shown;
  for (const WideString& part : Split(path)) {
    key += (key.empty() ? L"" : L"\\") + Find(shortNames, Upper(part)).value_or(Upper(part));
    const auto node = nodes.find(key);
    shown += (shown.empty() ? L"" : L"\\") + (node == nodes.end() ? part : node->second.name);
  }
  if (path.ends_with(L'\\') && !shown.ends_with(L'\\')) shown += L'\\';
  return shown;
}

std::optional<WideString> MemoryPathOperations::OpenForReal(WideView path) {
  std::optional<WideString> full = Opened(path);
  for (int links = 0; full && links <= 63; ++links) {
    if (full->size() >= 260 || full->find_first_of(L"*?\"|<>") != WideString::npos) return std::nullopt;
    const size_t slash = full->find_last_of(L'\\');
    if (slash == WideString::npos) return std::nullopt;
    const std::optional<WideString> directory = Locate(WideView(*full).substr(0, slash), true);
    const auto parent = directory ? nodes.find(*directory) : nodes.end();
    if (parent == nodes.end() || (parent->second.attributes & kAttributeDirectory) == 0) return std::nullopt;
    const WideString key = *directory + L"\\" + Upper(WideView(*full).substr(slash + 1));
    const auto file = nodes.find(key);
    if (file == nodes.end() || file->second.target.empty()) return key;
    full = file->second.target;
  }
  return std::nullopt;
}

std::vector<PathRow> ReadPathCorpus() {
  std::vector<PathRow> rows;
  std::ifstream in(LUMEN_SOURCE_DIR "/tests/data/paths.txt", std::ios::binary);
  for (std::string line; std::getline(in, line);) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream parts(line);
    std::string setting, flags, path, reason;
    for (std::string* const part : {&setting, &flags, &path, &reason}) std::getline(parts, *part, '|');
    rows.push_back({setting == "L", flags, FillIn(path), reason});
  }
  return rows;
}
