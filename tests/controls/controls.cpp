// Takes the role of the companion library for tests: it knows one name of a file.
#include <windows.h>

#include <cstdint>
#include <cwchar>

extern "C" __declspec(dllexport) int WINAPI CtlXlatPath(const wchar_t* path, wchar_t* target,
                                                        uint32_t capacity) {
    constexpr wchar_t kKnown[] = L"known.hlp";
    constexpr wchar_t kTranslated[] = L"C:\\translated.hlp";
    if (std::wcscmp(path, kKnown) != 0 || capacity < sizeof kTranslated / sizeof *kTranslated) return 0;
    std::wcscpy(target, kTranslated);
    return 1;
}
