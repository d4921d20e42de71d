#include "tests/support/PathCorpus.h"

#include <fstream>

namespace {

struct Token {
  std::string_view name;
  WideView value;
};
constexpr Token kTokens[] = {
    {"{P}", L"C:\\Users\\A\\AppData\\Roaming\\Halcyonics\\Lumen Player"},
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
  for (const Token& token : kTokens) {
    const WideString name = WidenAscii(token.name);
    for (size_t at = path.find(name); at != WideString::npos; at = path.find(name)) {
      path.replace(at, name.size(), token.value.data(), token.value.size());
    }
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

}  // namespace

std::vector<PathRow> ReadPathCorpus() {
  std::vector<PathRow> rows;
  std::ifstream in(LUMEN_SOURCE_DIR "/tests/data/paths.txt", std::ios::binary);
  for (std::string line; std::getline(in, line);) {
    if (line.empty() || line[0] == '#') continue;
    const size_t first = line.find('|');
    const size_t second = line.find('|', first + 1);
    const size_t third = line.find('|', second + 1);
    rows.push_back({line.substr(0, first) == "L", line.substr(first + 1, second - first - 1),
                    FillIn(line.substr(second + 1, third - second - 1)), line.substr(third + 1)});
  }
  return rows;
}
