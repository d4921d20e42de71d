// The sample NPAPI plug-in: there to be found, loaded and refused nothing.
#include <cstdint>

namespace {
constexpr int16_t kNoError = 0;
}

extern "C" int16_t NP_GetEntryPoints(void* /*functions*/) {
  return kNoError;
}
extern "C" int16_t NP_Initialize(void* /*browserFunctions*/) {
  return kNoError;
}
extern "C" int16_t NP_Shutdown() {
  return kNoError;
}
