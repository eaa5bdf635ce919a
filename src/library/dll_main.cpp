#include "library/load.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE library, DWORD reason, void*) {
    if (reason == DLL_PROCESS_ATTACH) vxut::Attach(library);
    if (reason == DLL_PROCESS_DETACH) vxut::Detach();
    return TRUE;
}
