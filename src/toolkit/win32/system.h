#pragma once

// Windows' own headers, for this folder's sources only. The build asks for those of Windows 95 with Internet
// Explorer 4: structures have the sizes that it knows, and what is newer is hidden.
#define WIN32_LEAN_AND_MEAN
#ifndef NOMINMAX
#define NOMINMAX
#endif

#include <windows.h>
// after windows.h
#include <commctrl.h>
#include <commdlg.h>

namespace toolkit::win32 {

struct Message {
    UINT id;
    WPARAM w;
    LPARAM l;
};

/// A function of a library that may not be there; null then.
template <class Function>
Function* bind(const char* library, const char* name) {
    HMODULE const module = LoadLibraryA(library);
    if (!module) return nullptr;
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

}  // namespace toolkit::win32
