// What the top-level window and its native children do with each message. Exceptions end here.
#pragma once

#include <windows.h>

// The window object is in the user data, put there by WM_CREATE.
LRESULT CALLBACK TopLevelProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
// The region is in the user data, its proxy in the property that kProxyProperty names.
LRESULT CALLBACK ChildProcedure(HWND child, UINT message, WPARAM wParam, LPARAM lParam);

// The name of the property of a native child that holds its MAccProxyObject.
constexpr wchar_t kProxyProperty[] = L"ACC_PROP";
