// The progress dialog of the companion library, in which the user can stop the packing of a dump.
#pragma once

#include "base/late_load.h"

#include <cstdint>

namespace vxut {

// The functions of the companion library: each takes the handle of what it works on first, and wide texts.
class clsVlmrCTL : public CLateLoadBase {
public:
    clsVlmrCTL() : CLateLoadBase(L"VLMRCTL") { SetFreeAtEnd(false); }

    clsLateFunction<void * WINAPI(HMODULE client)> CtlJobOpenEx{*this, "CtlJobOpenEx", 4};
    clsLateFunction<void WINAPI(void* job)> CtlJobCloseEx{*this, "CtlJobCloseEx", 4};
    clsLateFunction<void * WINAPI(void* job, const wchar_t* caption, const wchar_t* text)> CtlAbortDlgStart{
        *this, "CtlAbortDlgStart", 12};
    clsLateFunction<void WINAPI(void* dialog)> CtlAbortDlgEnd{*this, "CtlAbortDlgEnd", 4};
    clsLateFunction<void WINAPI(void* dialog, const wchar_t* text, int32_t percent)> CtlAbortDlgSetText{
        *this, "CtlAbortDlgSetText", 12};
    clsLateFunction<int32_t WINAPI(void* dialog)> CtlAbortDlgCheckAbort{*this, "CtlAbortDlgCheckAbort", 4};
    clsLateFunction<HWND WINAPI(void* dialog)> CtlAbortDlgHWnd{*this, "CtlAbortDlgHWnd", 4};

protected:
    // The library lies beside the program.
    HMODULE Load(const wchar_t* name) override { return LoadLibraryW(name); }
};

// Loads the companion library, so that nothing is loaded later, when another thread may hold the loader's
// lock for ever.
void PrepareAbortDialog();

// The dialog for the time of its scope. Without the library there is none, and every test says that the
// packing is to stop, unless the host has allowed to pack without it. A fault of the library counts as its
// absence. Serves one thread.
class clsAbortDialog {
public:
    clsAbortDialog();
    ~clsAbortDialog();
    clsAbortDialog(const clsAbortDialog&) = delete;
    clsAbortDialog& operator=(const clsAbortDialog&) = delete;

    bool MayGoOn();
    void SetProgress(int32_t percent);

private:
    template <class Call>
    bool Try(Call call);

    void* job_ = nullptr;
    void* dialog_ = nullptr;
    bool isDefective_ = false;
};

// Whether dumps are packed also if the companion library is missing.
void SetPackAlways(bool packAlways);

} // namespace vxut
