#include "machine/windows/late_call.h"

#include <windows.h>

namespace machine {

void* find_call(const char* library, const char* name) {
    const HMODULE module = LoadLibraryA(library);
    return module ? reinterpret_cast<void*>(GetProcAddress(module, name)) : nullptr;
}

}  // namespace machine
