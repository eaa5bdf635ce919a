#include "util/help.h"

#include "base/debug.h"
#include "base/guard.h"
#include "windowing/help.h"
#include "windowing/help_path.h"

using namespace vxut;

namespace {

HUTILHELP Open(HWND window, IUtilHelp* host, uint32_t message, const String& file) {
    const auto help = std::make_shared<clsHelp>(window, host, message, file);
    LinkHelp(help);
    return reinterpret_cast<HUTILHELP>(help.get());
}

// Calls work with the object of a handle. Returns neutral if there is none.
template <class Result, class Work>
Result WithHelp(HUTILHELP handle, Result neutral, Work work) {
    return Guarded(neutral, [&] {
        const HelpOwner help = FindHelp(handle);
        return help ? static_cast<Result>(work(*help)) : neutral;
    });
}

} // namespace

HUTILHELP UtilHelpOpen(HWND window, const wchar_t* file) {
    return Guarded<HUTILHELP>(nullptr, [&] {
        if (IS_INTRESOURCE(file))
            return Open(window, nullptr, static_cast<uint32_t>(reinterpret_cast<uintptr_t>(file)), String());
        return Open(window, nullptr, 0, TranslatedHelpPath(file));
    });
}

HUTILHELP UtilHelpOpenEx(HWND window, IUtilHelp* host) {
    return Guarded<HUTILHELP>(nullptr, [&] {
        uint32_t message = 0;
        if (host && FAILED(host->GetHelpMessage(&message))) message = 0;
        return Open(window, host, message, String());
    });
}

void UtilHelpClose(HUTILHELP handle) {
    if (!handle)
        return DebugWrite(L"VLMRUTIL(Help): UtilHelpClose(): Try to unhook Help object that is not hooked\n");
    Guarded([&] {
        const HelpOwner help = FindHelp(handle);
        if (help && UnlinkHelp(help)) help->Close();
    });
}

int UtilHelpDisplay(HUTILHELP handle) { return UtilHelpDisplayContext(handle, UTIL_HELP_FIND_NUMBER); }

int UtilHelpDisplayContext(HUTILHELP handle, int32_t number) {
    return WithHelp(handle, 0, [=](clsHelp& help) { return help.Display(number); });
}

int UtilHelpShowContents(HUTILHELP handle) {
    return WithHelp(handle, 0, [](clsHelp& help) { return help.ShowContents(); });
}

int UtilHelpShowIndex(HUTILHELP handle) {
    return WithHelp(handle, 0, [](clsHelp& help) { return help.ShowIndex(); });
}

int UtilHelpShowHelpOnHelp(HUTILHELP handle) {
    return WithHelp(handle, 0, [](clsHelp& help) { return help.ShowHelpOnHelp(); });
}

int UtilHelpPush(HUTILHELP handle, int32_t number) {
    return WithHelp(handle, 0, [=](clsHelp& help) { return help.Push(number); });
}

void UtilHelpPop(HUTILHELP handle) {
    Guarded([&] {
        if (const HelpOwner help = FindHelp(handle)) help->Pop();
    });
}

HCURSOR UtilHelpCursor(HUTILHELP handle) {
    return WithHelp<HCURSOR>(handle, nullptr, [](const clsHelp& help) { return help.Cursor(); });
}

void UtilHelpSetHelpMode(HUTILHELP handle, uint32_t mode) {
    Guarded([&] {
        if (const HelpOwner help = FindHelp(handle)) help->SetMode(mode);
    });
}

uint32_t UtilHelpIsInHelpMode(HUTILHELP handle) {
    return WithHelp<uint32_t>(handle, 0, [](const clsHelp& help) { return help.Mode(); });
}

int UtilHelp(HUTILHELP handle, HWND window, const wchar_t* file, uint32_t command, ULONG_PTR data) {
    return WithHelp(handle, 0, [=](clsHelp& help) { return help.Show(window, file, command, data); });
}
