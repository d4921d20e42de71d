#include "client/HresultNames.h"

#include <charconv>
#include <cstdio>

namespace {

struct Row {
  uint32_t code;
  std::string_view name;
  std::string_view meaning;
};
constexpr Row kRows[] = {
    {0x00000000, "S_OK", "done"},
    {0x00000001, "S_FALSE", "no"},
    {0x80004001, "E_NOTIMPL", "the broker does not do this"},
    {0x80004002, "E_NOINTERFACE", "no such interface"},
    {0x80004003, "E_POINTER", "null pointer"},
    {0x80004005, "E_FAIL", "failed or refused"},
    {0x80070057, "E_INVALIDARG", "bad argument or unknown cookie"},
    {0x80070005, "E_ACCESSDENIED", "refused by policy or by the system"},
    {0x8007000E, "E_OUTOFMEMORY", "out of memory"},
    {0x80070002, "ERROR_FILE_NOT_FOUND", "no such file"},
    {0x80070003, "ERROR_PATH_NOT_FOUND", "no such directory"},
    {0x80070006, "ERROR_INVALID_HANDLE", "the cookie's handle is gone"},
    {0x80070012, "ERROR_NO_MORE_FILES", "end of the listing"},
    {0x80070020, "ERROR_SHARING_VIOLATION", "in use"},
    {0x80070050, "ERROR_FILE_EXISTS", "exists already"},
    {0x80070091, "ERROR_DIR_NOT_EMPTY", "directory not empty"},
    {0x800700B7, "ERROR_ALREADY_EXISTS", "exists already"},
    {0x800704C7, "ERROR_CANCELLED", "the user chose nothing"},
    {0x80040154, "REGDB_E_CLASSNOTREG", "class not registered"},
    {0x80010010, "RPC_E_INVALID_PARAMETER", "shortcut refused"},
    {0x800706BA, "RPC_S_SERVER_UNAVAILABLE", "the server is gone"},
    {0x80080005, "CO_E_SERVER_EXEC_FAILURE", "the server could not be started"},
};

const Row* Find(int32_t result) {
  for (const Row& row : kRows) {
    if (row.code == static_cast<uint32_t>(result)) return &row;
  }
  return nullptr;
}

}  // namespace

std::string HexOfResult(int32_t result) {
  char text[16];
  std::snprintf(text, sizeof(text), "0x%08X", static_cast<unsigned>(result));
  return text;
}

std::string_view NameOfResult(int32_t result) {
  const Row* const row = Find(result);
  return row == nullptr ? std::string_view() : row->name;
}

std::string DescribeResult(int32_t result) {
  const auto bits = static_cast<uint32_t>(result);
  std::string text = HexOfResult(result);
  if (const Row* const row = Find(result)) {
    text.append(" ").append(row->name).append(" (").append(row->meaning).append(")");
  } else if (bits >> 16 == 0x8007) {
    text += " (system error " + std::to_string(bits & 0xFFFF) + ")";
  }
  return text;
}

std::optional<int32_t> ParseResult(std::string_view text) {
  for (const Row& row : kRows) {
    if (row.name == text) return static_cast<int32_t>(row.code);
  }
  const bool hex = text.starts_with("0x") || text.starts_with("0X");
  if (hex) text.remove_prefix(2);
  uint32_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, hex ? 16 : 10);
  if (error != std::errc() || end != text.data() + text.size() || text.empty()) return std::nullopt;
  return static_cast<int32_t>(value);
}
