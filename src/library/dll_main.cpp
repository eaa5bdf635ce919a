#include "library/load.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE library, DWORD reason, void* isProcessEnding) {
    if (reason == DLL_PROCESS_ATTACH) vxut::Attach(library);
    if (reason == DLL_PROCESS_DETACH) isProcessEnding ? vxut::DetachAtProcessEnd() : vxut::Detach();
    return TRUE;
}
