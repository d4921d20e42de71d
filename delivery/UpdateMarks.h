// Arranges that the update dialog runs at the next logon, and remembers which version the user turned down. All marks
// are registry values of the current user; the server's text is stored as it came and read back only here.
#pragma once

#include <cstdint>

class MStringList;

// Stores the server's text and enters `executablePath`, or the running program when that is null, to run once at the
// next logon with "-update activex". A text that mentions the rejected version is not stored, so a rejected version
// stays quiet. False only for a null text: a mark that could not be written is not the caller's concern.
[[nodiscard]] bool MarkAutoUpdaterForRun(const char* description, const char* executablePath);
// Adds the stored text's meta block, decoded, to `out`. False when there is none.
[[nodiscard]] bool ReadUpdateDescription(MStringList* out);
// Remembers the stored text's version as rejected. False when there is no version or it could not be written.
[[nodiscard]] bool MarkUpdateRejected();
// Takes away what this and the kind's inventory left for the updater. Goes on after a failure; a value or key that is
// not there counts as one. Without a caller in the product, as is the next: a removal has steps of its own, which
// report.
[[nodiscard]] bool RemoveUpdateMarks(uint32_t kind);
// Forgets which versions are safe to install.
void RemoveSafeVersions();
