// How a region holds the object that answers screen readers for it, without knowing what that object is.
#pragma once

#include <cstdint>
#include <memory>

class MAccProxyObject;
class MRegion;

// The region's own reference. Letting it go tells the proxy that its region is no more and releases it; clients may
// hold the proxy longer.
using AccProxyOwner = std::unique_ptr<MAccProxyObject, void (*)(MAccProxyObject*)>;

// A proxy for `region`, referenced once for it. Null when there is no memory.
[[nodiscard]] AccProxyOwner MakeAccProxy(MRegion* region);
// The answer of a native child to WM_GETOBJECT: `wParam` is the message's. 0 when accessibility is not there.
[[nodiscard]] intptr_t AnswerGetObject(MAccProxyObject* proxy, uintptr_t wParam);
