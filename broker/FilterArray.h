// The file filters that a client sends with a file dialog: one text in which "\0", a backslash and the digit, ends a
// field and "\\" stands for a backslash. Names to show and patterns alternate; the text ends behind its last separator.
#pragma once

#include <cstdint>
#include <span>

#include "engine/PlatformConstants.h"

// What a call says of its filters, beside the array it brings.
struct FilterArguments {
  uint32_t pairs = 0;
  uint32_t length = 0;  // of the text, in bytes, with its terminator
  bool hasArray = false;
  uint32_t dimensions = 0;  // of the array, and elements in its first; both 0 without one
  uint32_t elements = 0;
};

// Ok, or InvalidArgument. Without pairs there must be neither length nor array; with them, an array of that length.
[[nodiscard]] Result CheckFilterArguments(const FilterArguments& arguments);

// Decodes the text in place. Ok means that it held exactly `pairs` pairs; their fields then stand one behind the other
// from the beginning, each with a terminator. InvalidArgument for anything else, with the text half decoded. `bytes`
// must be aligned for its characters, as the platform's arrays are.
[[nodiscard]] Result DecodeFilters(std::span<uint8_t> bytes, uint32_t pairs);

// The field of a decoded text at `at`, which moves on to the next.
[[nodiscard]] const wchar_t* TakeField(const wchar_t*& at);
