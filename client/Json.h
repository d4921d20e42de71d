// Just enough JSON to write one object a line.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

class JsonObject {
 public:
  JsonObject& Text(std::string_view name, std::string_view value);
  JsonObject& Number(std::string_view name, uint64_t value);
  JsonObject& Flag(std::string_view name, bool value);
  [[nodiscard]] std::string Close() const { return body_ + "}"; }

 private:
  void Name(std::string_view name);
  std::string body_ = "{";
};

// A text as JSON writes it, with its quotes. The input is UTF-8.
[[nodiscard]] std::string QuoteJson(std::string_view text);
