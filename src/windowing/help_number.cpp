#include "windowing/help_number.h"

#include <cwchar>
#include <iterator>

namespace vxut {
namespace {

constexpr wchar_t kNumberClass[] = UTIL_HELP_NUMBER_CLASS;

// More than the system has: a list of windows that changes while it is walked may have no end.
constexpr int kMostWindows = 65536;

UINT ContextMessage() {
    static const UINT message = RegisterWindowMessageW(UTIL_HELP_CONTEXT_MESSAGE);
    return message;
}

// The name is read with as many units as the class has, so that longer ones which begin with it count too.
bool HoldsNumber(HWND window) {
    wchar_t name[std::size(kNumberClass)] = L"";
    GetClassNameW(window, name, std::size(kNumberClass));
    return std::wcscmp(name, kNumberClass) == 0;
}

int32_t NumberOf(HWND window) {
    wchar_t text[16] = L"";
    GetWindowTextW(window, text, static_cast<int>(std::size(text)));
    return static_cast<int32_t>(std::wcstol(text, nullptr, 10));
}

// The first of a window and those behind it that match; null if there is none.
template <class Match>
HWND FirstFrom(HWND window, Match match) {
    for (int i = 0; window && i < kMostWindows; ++i, window = GetWindow(window, GW_HWNDNEXT))
        if (match(window)) return window;
    return nullptr;
}

HWND NumberBesideFocus() {
    const HWND focus = GetFocus();
    if (!focus) return nullptr;
    const int id = GetDlgCtrlID(focus);
    return FirstFrom(GetWindow(focus, GW_HWNDFIRST),
                     [=](HWND window) { return GetDlgCtrlID(window) == -id && HoldsNumber(window); });
}

} // namespace

int32_t FindHelpNumber(clsHelp& help) {
    const HWND active = GetActiveWindow();
    const bool isActive = IsWindow(active) != FALSE;
    if (!help.Top()) {
        const LRESULT answer = isActive ? SendMessageW(active, ContextMessage(), 0, 0) : 0;
        return answer != 0 ? static_cast<int32_t>(answer) : UTIL_HELP_FIND_NUMBER;
    }
    if (isActive) {
        HWND holder = NumberBesideFocus();
        if (!holder) holder = FirstFrom(GetWindow(active, GW_CHILD), HoldsNumber);
        if (holder) return NumberOf(holder);
    }
    return *help.Top();
}

} // namespace vxut
