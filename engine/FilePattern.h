// File name patterns of the settings, in the form prefix:suffix.
#pragma once

#include "engine/MString.h"
#include "engine/MStringList.h"

// The prefix is what precedes the first ":", the suffix what follows the last; without a ":" the whole pattern is the
// prefix. A name matches when it starts with the one and ends with the other, however they overlap.
[[nodiscard]] bool MatchesPattern(const MString& name, const MString& pattern);
// The path of the entry that matches; of several the last. An empty string when none does.
[[nodiscard]] MString FindMatchingFile(const MStringList& entries, const MString& directory, const MString& pattern);
// Adds directory, "\" and entry to `matches` for every entry that matches.
void CollectMatches(const MStringList& entries, const MString& directory, const MString& pattern, MStringList& matches);
