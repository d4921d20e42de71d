// The shim's answers on what is installed and what may be installed over it.
#include "engine/LumenBrokerShim.h"
#include "engine/ProductKind.h"
#include "engine/ReportCode.h"
#include "install/Inventory.h"

namespace {

// Only the control asks the list of safe versions, and only the other kinds refuse to go back to an older version.
bool AdmitsThisBuild(HostCallbacks* host, uint32_t kind) {
  if (kind == product_kind::ActiveX) return IsSafeVersion(host);
  return CompareInstalledVersion(host, kind) != InstalledState::Newer;
}

}  // namespace

bool LumenBrokerShim::ReleaseTypeMatches(uint32_t kinds, uint32_t expected) noexcept {
  return ::ReleaseTypeMatches(host, kinds, expected);
}

bool LumenBrokerShim::CheckInstallAllowed(uint32_t kinds, uint32_t* code, uint32_t mode) noexcept {
  const ReportCode byVersion =
      mode == 1 ? ReportCode::InstallRefusedByVersionInMode1 : ReportCode::InstallRefusedByVersion;
  for (const uint32_t kind : {product_kind::ActiveX, product_kind::Plugin, product_kind::Pepper}) {
    if ((kinds & kind) == 0) continue;
    const bool rightType = ReleaseTypeMatches(kind, mode);
    if (rightType && AdmitsThisBuild(host, kind)) continue;
    *code = static_cast<uint32_t>(rightType ? byVersion : ReportCode::InstallRefusedByReleaseType);
    return false;
  }
  return true;
}

uint32_t LumenBrokerShim::GetInstalledVersionState(uint32_t kind) noexcept {
  return static_cast<uint32_t>(CompareInstalledVersion(host, kind));
}
