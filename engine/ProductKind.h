// The three product kinds, one flag each. Operations take one or several.
#pragma once

#include <cstdint>

namespace product_kind {
constexpr uint32_t ActiveX = 8;
constexpr uint32_t Plugin = 16;
constexpr uint32_t Pepper = 32768;
}  // namespace product_kind
