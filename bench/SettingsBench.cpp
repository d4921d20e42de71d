// Parsing of a settings text beside one pass over the same units that only counts delimiters: the least that any parser
// of it must do.
#include <chrono>
#include <cstdio>

#include "engine/SettingsTree.h"

namespace {

constexpr int kRounds = 15;

// A text of the shape that installers bring: lists of names and tables of conflicts, here of about 2 MB.
WideString MakeText() {
  WideString text;
  for (int group = 0; group < 1000; ++group) {
    const WideString number(MString::FromNumber(group).View());
    text += L"FilenamesGroup" + number + L" LumenPlayer" + number + L".ocx LumenUtil.exe \"Get Lumen.exe\";\n";
    text += L"Conflicts" + number + L" {\n";
    for (int entry = 0; entry < 20; ++entry) text += L"  browserprocess \"A Browser With a Name\" 1;\n";
    text += L"};\n";
  }
  return text;
}

size_t CountDelimiters(WideView text) {
  size_t count = 0;
  for (const wchar_t unit : text) count += unit <= L' ' || unit == L'"' || unit == L';' || unit == L'{' || unit == L'}';
  return count;
}

// The best of several rounds, in seconds; other load on the machine only ever adds.
template <class Act>
double BestSeconds(Act act) {
  double best = 1e9;
  for (int round = 0; round < kRounds; ++round) {
    const auto start = std::chrono::steady_clock::now();
    act();
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    if (taken.count() < best) best = taken.count();
  }
  return best;
}

}  // namespace

int main() {
  const MString text{WideView(MakeText())};
  const double megabytes = static_cast<double>(text.Length()) * sizeof(wchar_t) / 1e6;
  volatile size_t kept = 0;
  const double scan = BestSeconds([&] { kept = CountDelimiters(text.View()); });
  const double parse = BestSeconds([&] {
    SettingsTree tree;
    ParseSettings(&tree, text);
    kept = tree.documents->children != nullptr;
  });
  std::printf("settings parse, %.1f MB: %.0f MB/s; scan of the same units: %.0f MB/s; ratio %.1f\n", megabytes,
              megabytes / parse, megabytes / scan, parse / scan);
  return 0;
}
