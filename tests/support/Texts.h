// The module's texts and lists in the form that tests compare and print: UTF-8, and vectors of it.
#pragma once

#include <string>
#include <vector>

#include "engine/MString.h"
#include "engine/MStringList.h"

using Lines = std::vector<std::string>;

inline std::string Text(const MString& text) {
  return ToUtf8(text.View());
}

// The list's keys in order, read forwards.
inline Lines Keys(const MStringList* list) {
  Lines keys;
  for (const auto* node = list->Head(); node != nullptr; node = node->next) keys.push_back(Text(node->key));
  return keys;
}
