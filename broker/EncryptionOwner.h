// The enterprise that is to own a saved file, as the platform's save dialog lets its user choose it.
#pragma once

#include <windows.h>

#include <shobjidl.h>

#include <optional>

#include "engine/WideText.h"

// Puts the choice into a dialog that is not shown yet, with `identity` chosen first; an empty one for none. A platform
// that knows no owners shows the dialog without the choice, so nothing here fails.
void OfferEncryptionOwner(IFileSaveDialog* dialog, const WideString& identity);

// What the user chose in a dialog that has ended well; nothing when that is no enterprise.
[[nodiscard]] std::optional<WideString> ChosenEncryptionOwner(IFileSaveDialog* dialog);
