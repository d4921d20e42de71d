// Window-system handles as portable code sees them: the same types as the platform's HWND, HDC and so on, declared
// without its headers, so that a header of the toolkit reads the same in both builds.
#pragma once

struct HBITMAP__;
struct HDC__;
struct HFONT__;
struct HINSTANCE__;
struct HWND__;

using BitmapHandle = HBITMAP__*;
using DrawingContext = HDC__*;
using FontHandle = HFONT__*;
using ModuleHandle = HINSTANCE__*;
using WindowHandle = HWND__*;
