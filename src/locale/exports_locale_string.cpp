#include "util/locale_string.h"

#include <windows.h>

#include <algorithm>
#include <climits>
#include <cwchar>

namespace {

constexpr int kLess = -1;
constexpr int kEqual = 0;
constexpr int kGreater = 1;

int Compare(DWORD flags, const wchar_t* first, int firstUnits, const wchar_t* second, int secondUnits) {
    return CompareStringW(LOCALE_USER_DEFAULT, flags, first, firstUnits, second, secondUnits) - CSTR_EQUAL;
}

int Compare(DWORD flags, const wchar_t* first, const wchar_t* second) {
    return Compare(flags, first, -1, second, -1);
}

// The system takes lengths as int: one that does not fit fails there. Callers rely on a failure being 0 here
// and not the -2 of the unbounded comparisons.
int CompareBounded(DWORD flags, const wchar_t* first, const wchar_t* second, size_t count) {
    if (!first || !second) return kEqual;
    const size_t firstUnits = std::min(std::wcslen(first), count);
    const size_t secondUnits = std::min(std::wcslen(second), count);
    const size_t common = std::min(firstUnits, secondUnits);
    if (common > INT_MAX) return kEqual;
    const int units = static_cast<int>(common);
    const int order = units > 0 ? Compare(flags, first, units, second, units) : kEqual;
    if (order != kEqual) return order == kLess || order == kGreater ? order : kEqual;
    return (firstUnits > secondUnits) - (firstUnits < secondUnits);
}

} // namespace

// The system takes a value without a high part for a single unit.
wchar_t* UtilLocaleStrupr(wchar_t* text) { return text ? CharUpperW(text) : nullptr; }

wchar_t* UtilLocaleStrlwr(wchar_t* text) { return text ? CharLowerW(text) : nullptr; }

int UtilLocaleStrcmp(const wchar_t* first, const wchar_t* second) { return Compare(0, first, second); }

int UtilLocaleStricmp(const wchar_t* first, const wchar_t* second) {
    return Compare(NORM_IGNORECASE, first, second);
}

int UtilLocaleStrncmp(const wchar_t* first, const wchar_t* second, uint32_t count) {
    return CompareBounded(0, first, second, count);
}

int UtilLocaleStrnicmp(const wchar_t* first, const wchar_t* second, uint32_t count) {
    return CompareBounded(NORM_IGNORECASE, first, second, count);
}
