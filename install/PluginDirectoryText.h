// What one browser's registry text says about where its plug-ins are. Pure logic; any thread.
#pragma once

#include <optional>

#include "engine/MString.h"

// The path of the browser's program stands for "Program\Plugins" beside it; a path that ends in "\Plugins" for itself;
// any other text for nothing.
[[nodiscard]] std::optional<MString> PluginDirectoryFrom(const MString& text);
