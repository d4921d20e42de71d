// A client's file filters as the platform's dialogs take them.
#pragma once

#include <windows.h>

#include <oleauto.h>
#include <shobjidl.h>

#include <memory>

struct ProcessHeapFree {
  void operator()(COMDLG_FILTERSPEC* specs) const { HeapFree(GetProcessHeap(), 0, specs); }
};
using FilterSpecs = std::unique_ptr<COMDLG_FILTERSPEC[], ProcessHeapFree>;

// S_OK or E_INVALIDARG: whether the three arguments fit together.
[[nodiscard]] HRESULT CheckFilterArguments(ULONG pairs, ULONG length, SAFEARRAY* array);

// Decodes a checked array in place. `specs` gets `pairs` entries, on the process heap, whose texts are the array's own
// data: they live no longer than it. E_INVALIDARG for a malformed text, E_OUTOFMEMORY, or why it cannot be locked.
[[nodiscard]] HRESULT ParseFilterArray(ULONG pairs, SAFEARRAY* array, FilterSpecs& specs);
