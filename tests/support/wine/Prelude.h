/* widl's proxies call these three, which no header or library of the toolchain declares. */
#include <objidl.h>

HRESULT STDMETHODCALLTYPE IUnknown_QueryInterface_Proxy(IUnknown* self, REFIID iid, void** out);
ULONG STDMETHODCALLTYPE IUnknown_AddRef_Proxy(IUnknown* self);
ULONG STDMETHODCALLTYPE IUnknown_Release_Proxy(IUnknown* self);
