#include "base/text_conversion.h"

#include <windows.h>

namespace vxut {

int WidenText(uint32_t codePage, const char* text, int length, wchar_t* target, int capacity) noexcept {
    const DWORD flags = codePage == CP_UTF8 ? 0 : MB_PRECOMPOSED;
    const int units = MultiByteToWideChar(codePage, flags, text, length, target, capacity);
    // Stateful code pages such as 50220 and 65000 accept no flags.
    if (units == 0 && GetLastError() == ERROR_INVALID_FLAGS) {
        return MultiByteToWideChar(codePage, 0, text, length, target, capacity);
    }
    return units;
}

int NarrowText(uint32_t codePage, const wchar_t* text, int length, char* target, int capacity) noexcept {
    return WideCharToMultiByte(codePage, 0, text, length, target, capacity, nullptr, nullptr);
}

} // namespace vxut
