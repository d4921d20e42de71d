// The sample PPAPI library: there to be found and loaded; it offers no interface.
#include <cstdint>

extern "C" int32_t PPP_InitializeModule(int32_t /*module*/, const void* (*)(const char* interfaceName)) {
  return 0;
}
extern "C" const void* PPP_GetInterface(const char* /*interfaceName*/) {
  return nullptr;
}
extern "C" void PPP_ShutdownModule() {}
