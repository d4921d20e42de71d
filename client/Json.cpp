#include "client/Json.h"

#include <cstdio>

std::string QuoteJson(std::string_view text) {
  std::string quoted = "\"";
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      quoted.push_back('\\');
      quoted.push_back(c);
    } else if (byte < 32) {
      char escape[8];
      std::snprintf(escape, sizeof(escape), "\\u%04x", static_cast<unsigned>(byte));
      quoted += escape;
    } else {
      quoted.push_back(c);
    }
  }
  return quoted + "\"";
}

void JsonObject::Name(std::string_view name) {
  if (body_.size() > 1) body_.push_back(',');
  body_ += QuoteJson(name) + ":";
}

JsonObject& JsonObject::Text(std::string_view name, std::string_view value) {
  Name(name);
  body_ += QuoteJson(value);
  return *this;
}

JsonObject& JsonObject::Number(std::string_view name, uint64_t value) {
  Name(name);
  body_ += std::to_string(value);
  return *this;
}

JsonObject& JsonObject::Flag(std::string_view name, bool value) {
  Name(name);
  body_ += value ? "true" : "false";
  return *this;
}
