// What the list of installed programs holds of the product: the entry of each kind, and packages of earlier versions
// that the system's own installer has to take away. Host's thread; nothing is reported.
#pragma once

#include <cstdint>

#include "engine/MString.h"

class InstallEngine;

// Where a package's product code is looked for under the machine hive, in this order.
struct MsiKeyPrefixes {
  MString first;
  MString second;
};

// Has the system's installer in `toolDirectory` remove the package in silence, and waits for it as long as it takes. A
// package that neither key knows is left alone. Whether it worked is not asked.
void RemoveMsiProduct(const MsiKeyPrefixes& prefixes, const MString& toolDirectory, const MString& productCode);

// Deletes the kind's entry, then removes the packages that the settings name for it.
void CleanUpUninstallEntries(const InstallEngine& engine, uint32_t kind);
