// Rows of texts as a table that people read on a console: the first row is the heading. Pure logic; any thread.
#pragma once

#include <string>
#include <vector>

using TableRow = std::vector<std::string>;

// Each column as wide as its widest cell, two blanks between, no blanks at a line's end; a line of dashes below the
// heading. Cells are UTF-8 and counted by characters. Rows may be shorter than the heading.
[[nodiscard]] std::string FormatTable(const std::vector<TableRow>& rows);
