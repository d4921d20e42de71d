// What the running system is, as far as the product behaves differently.
#pragma once

// Windows 6.0 or later. Any thread.
[[nodiscard]] bool IsVistaOrLater();
