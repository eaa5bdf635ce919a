// Case and other locale mappings of String.
#include "text/string.h"

#include "base/debug.h"
#include "base/identity.h"
#include "base/owners.h"
#include "base/registry.h"
#include "base/system_libraries.h"

#include <climits>

namespace vxut {
namespace {

constexpr int kLocalUnits = 200;

bool UsesNamedLocale() {
    static const bool uses =
        Identity().osVersion > kWindowsVista ||
        (Identity().osVersion == kWindowsVista && ReadSettingNumber(kSettingEnableMapStringEx, 0) != 0);
    return uses;
}

// Only the newer function has the linguistic mapping of the invariant locale.
int MapString(LCID locale, DWORD flags, const wchar_t* text, int length, wchar_t* target, int capacity) {
    const bool named =
        locale == LOCALE_INVARIANT && Identity().osVersion >= kWindowsVista && UsesNamedLocale();
    if (!named) return LCMapStringW(locale, flags, text, length, target, capacity);
    auto& mapper = Kernel32().LCMapStringEx;
    if (!mapper.IsAvailable()) return 0;
    return mapper(LOCALE_NAME_INVARIANT, flags, text, length, target, capacity, nullptr, nullptr, 0);
}

} // namespace

void String::LCMapString(DWORD flags, LCID locale) {
    if (IsEmpty()) return;
    // The terminator is mapped too. A length that does not fit fails below as one of 0 units.
    const int length = length_ < INT_MAX ? static_cast<int>(length_) + 1 : 0;
    const int size = MapString(locale, flags, Text(), length, nullptr, 0);
    wchar_t local[kLocalUnits];
    clsAutoDeleteBytes<wchar_t> allocated;
    wchar_t* target = local;
    if (size > kLocalUnits) {
        allocated.reset(new wchar_t[static_cast<size_t>(size)]);
        target = allocated.get();
    }
    const int mapped =
        MapString(locale, flags, Text(), length, target, size > kLocalUnits ? size : kLocalUnits);
    if (mapped == 0) {
        const DWORD error = GetLastError();
        DebugWrite(
            L"ERR: String::LCMapString[Ex](0x%x) failed: %d/%d/%d : %s! (Even if SUCCEEDED is returned, the "
            L"result is garbage)",
            flags, length, size, mapped, FromError(error).Text());
        return;
    }
    if (flags & LCMAP_SORTKEY) {
        Assign(target, 0, mapped / 2); // bytes, counted as such and ended by a zero byte
    } else {
        AssignUnits(target, mapped - (target[mapped - 1] == L'\0'));
    }
}

void String::MakeUpper() { LCMapString(LCMAP_UPPERCASE | LCMAP_LINGUISTIC_CASING, LOCALE_USER_DEFAULT); }

void String::MakeLower() { LCMapString(LCMAP_LOWERCASE | LCMAP_LINGUISTIC_CASING, LOCALE_USER_DEFAULT); }

} // namespace vxut
