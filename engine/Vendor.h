// The names that belong to the vendor rather than to the program. A vendor who ships the module changes this header
// only.
#pragma once

// The vendor's web domain; the player's settings directory and the sandboxed support directory are named after it.
#define LUMEN_VENDOR_DOMAIN L"corva.example"
#define LUMEN_VENDOR_DOMAIN_UPPER L"CORVA.EXAMPLE"
// Host names of downloads must end in this.
#define LUMEN_VENDOR_URL_SUFFIX ".corva.example/"
// Where Add/Remove Programs sends people; page paths follow.
#define LUMEN_VENDOR_HOME_PAGE L"https://www.corva.example"
// Registry name of the NPAPI plug-in.
#define LUMEN_PLUGIN_ID L"@corva.example/LumenPlayer"
