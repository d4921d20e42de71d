// Until the proxies for screen readers are there, regions have none.
#include "ui/toolkit/AccProxy.h"

AccProxyOwner MakeAccProxy(MRegion* /*region*/) {
  return {nullptr, nullptr};
}

intptr_t AnswerGetObject(MAccProxyObject* /*proxy*/, uintptr_t /*wParam*/) {
  return 0;
}
