#include "host/StatusTable.h"

#include <algorithm>

namespace {

size_t Characters(const std::string& text) {
  return static_cast<size_t>(std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

void AppendLine(std::string* out, const TableRow& row, const std::vector<size_t>& widths) {
  std::string line;
  for (size_t i = 0; i < row.size(); ++i) {
    line += row[i];
    if (i + 1 < row.size()) line.append(widths[i] - Characters(row[i]) + 2, ' ');
  }
  line.erase(line.find_last_not_of(' ') + 1);
  *out += line + "\n";
}

}  // namespace

std::string FormatTable(const std::vector<TableRow>& rows) {
  std::vector<size_t> widths;
  for (const TableRow& row : rows) {
    widths.resize(std::max(widths.size(), row.size()));
    for (size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], Characters(row[i]));
  }
  std::string out;
  for (const TableRow& row : rows) {
    AppendLine(&out, row, widths);
    if (&row != &rows.front()) continue;
    TableRow dashes;
    for (size_t i = 0; i < row.size(); ++i) dashes.emplace_back(widths[i], '-');
    AppendLine(&out, dashes, widths);
  }
  return out;
}
