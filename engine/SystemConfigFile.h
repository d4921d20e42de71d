// The machine's player configuration, a text of `key = value` lines that an administrator writes.
#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>

class SystemConfigFile {
 public:
  enum class State : int32_t {
    Absent = -1,  // not there, or shorter than 4 bytes, even if what there is would be a valid line
    Plain = 0,
    Utf8Mark = 1,   // behind a UTF-8 mark
    Utf16Mark = 2,  // not read: every key then has its default
  };

  SystemConfigFile() = default;
  // Parses the content of the file. The last line of a key wins; keys differ by case.
  explicit SystemConfigFile(std::span<const char> content);

  [[nodiscard]] State GetState() const { return state; }
  // The value, or an empty text when there is no such key. Valid while this object lives.
  [[nodiscard]] std::string_view Lookup(std::string_view key) const;

 private:
  void TakeLine(std::string_view line);

  State state = State::Absent;
  std::map<std::string, std::string, std::less<>> entries;
};

// "true", "t", "yes", "y" in any case, or a text whose leading decimal number is not 0.
[[nodiscard]] bool IsTrueSetting(std::string_view value);
