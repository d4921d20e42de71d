// The addresses that texts link to, by what stands there. A vendor changes these together with engine/Vendor.h, whose
// wide literals the resource compiler cannot join to a text.
#define LUMEN_WEB_URL "http://www.corva.example"
#define LUMEN_KB_URL "http://kb.corva.example"
#define LUMEN_GET_URL "http://get.corva.example"
#define LUMEN_LABS_URL "http://labs.corva.example"
#define LUMEN_UPDATE_URL "https://update.corva.example"
