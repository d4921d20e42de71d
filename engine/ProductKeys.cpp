#include "engine/ProductKeys.h"

#include "engine/ProductKind.h"

namespace {

constexpr char kUninstallPrefix[] = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\Corva Lumen Player ";

std::string WithKind(const char* prefix, uint32_t kind, const char* activeX, const char* plugin, const char* pepper) {
  const char* suffix = "";
  if (kind == product_kind::ActiveX) suffix = activeX;
  if (kind == product_kind::Plugin) suffix = plugin;
  if (kind == product_kind::Pepper) suffix = pepper;
  return std::string(prefix) + suffix;
}

}  // namespace

std::string GetProductKey(uint32_t kind) {
  return WithKind(kPlayerKey, kind, "ActiveX", "Plugin", "Pepper");
}

std::string GetReleaseTypeKey(uint32_t kind) {
  return WithKind(kPlayerKey, kind, "ActiveXReleaseType", "PluginReleaseType", "PepperReleaseType");
}

std::string GetUninstallEntryKey(uint32_t kind) {
  return WithKind(kUninstallPrefix, kind, "ActiveX", "NPAPI", "PPAPI");
}

std::string GetOldUninstallKey(uint32_t kind) {
  return WithKind(kUninstallPrefix, kind, "", "Plugin", "Pepper");
}
