#include "install/ExtraFiles.h"

#include "engine/LumenBrokerShim.h"
#include "engine/ProductKind.h"

MStringList* ExtraFilesOf(LumenBrokerShim* shim, uint32_t kind) {
  switch (kind) {
    case product_kind::ActiveX: return shim->GetExtraActiveXFiles();
    case product_kind::Plugin: return shim->GetExtraPluginFiles();
    case product_kind::Pepper: return shim->GetExtraPepperFiles();
    default: return nullptr;
  }
}
