// The update operations of the shim. Texts cross it as MString and are narrow behind it, as the server's are.
#include <optional>
#include <string>

#include "delivery/UpdateMarks.h"
#include "delivery/UpdateText.h"
#include "engine/LumenBrokerShim.h"

namespace {

bool Give(const std::optional<std::string_view>& found, MString* out) {
  if (!found) return false;
  *out = MString::FromNarrow(std::string(*found).c_str());
  return true;
}

}  // namespace

bool LumenBrokerShim::MarkUpdateRejected() noexcept {
  return ::MarkUpdateRejected();
}

bool LumenBrokerShim::ReadUpdateDescription(MStringList* out) noexcept {
  return ::ReadUpdateDescription(out);
}

bool LumenBrokerShim::ExtractMetaBlock(MString text, MString* out) noexcept {
  return Give(::ExtractMetaBlock(text.Narrow().get()), out);
}

bool LumenBrokerShim::ExtractUpdateVersion(MString text, MString* out) noexcept {
  return Give(::ExtractUpdateVersion(text.Narrow().get()), out);
}
