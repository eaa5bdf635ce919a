#include "checks/checked_strings.h"

#include "base/debug.h"
#include "base/text_units.h"
#include "checks/validate.h"

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cwchar>

namespace vxut {
namespace {

constexpr wchar_t kDestination[] = L"Destination";
constexpr wchar_t kSource[] = L"Source";
constexpr wchar_t kString[] = L"String";
constexpr wchar_t kParameter1[] = L"Parameter1";
constexpr wchar_t kParameter2[] = L"Parameter2";

uint32_t AsSize(uint64_t bytes) { return static_cast<uint32_t>(std::min<uint64_t>(bytes, UINT32_MAX)); }

uint64_t Length(const wchar_t* function, const wchar_t* text) {
    return static_cast<uint64_t>(SafeStrlen(function, text));
}

bool HasRoom(const wchar_t* function, wchar_t* dest, const wchar_t* label, uint64_t units) {
    return IsWPtr(function, dest, label, AsSize(units * sizeof(wchar_t)));
}

bool AreStrings(const wchar_t* function, const wchar_t* left, const wchar_t* right) {
    return IsStringPtr(function, left, kParameter1) && IsStringPtr(function, right, kParameter2);
}

// Callers rely on it that so many bytes are tested of a count of units.
bool AreReadable(const wchar_t* function, const wchar_t* left, const wchar_t* right, uint32_t count) {
    return IsRPtr(function, left, kParameter1, count) && IsRPtr(function, right, kParameter2, count);
}

bool IsChangeableString(const wchar_t* function, wchar_t* text) {
    return IsStringPtr(function, text, kString) &&
           HasRoom(function, text, kString, Length(function, text) + 1);
}

// Empties the destination before anything is copied: a source that reaches into it ends there. Callers rely
// on the order.
void EmptyBeforeCopy(wchar_t* dest, const wchar_t* source) {
    if (dest != source) *dest = L'\0';
}

// No way to insert was ever finished, and whoever calls for it must not go unnoticed: it is an access
// violation, as the unfinished code met it, but raised before anything is changed.
void FaultOnInsertion() {
    const ULONG_PTR writeToNull[] = {EXCEPTION_WRITE_FAULT, 0};
    RaiseException(EXCEPTION_ACCESS_VIOLATION, EXCEPTION_NONCONTINUABLE, 2, writeToNull);
}

} // namespace

void TrimTextLeft(wchar_t* text) noexcept {
    const wchar_t* rest = text;
    while (*rest == L' ') ++rest;
    if (rest != text) CopyText(text, rest);
}

void TrimTextRight(wchar_t* text) noexcept {
    const size_t length = UnitLength(text);
    size_t kept = length;
    while (kept > 0 && text[kept - 1] == L' ') --kept;
    if (kept != length) text[kept] = L'\0';
}

wchar_t* StuffText(wchar_t* dest, uint32_t position, uint32_t deleteCount, const wchar_t* text) noexcept {
    const size_t length = UnitLength(dest);
    const uint32_t start = position - 1;
    if (start > length) return dest;
    if (text && *text) {
        FaultOnInsertion();
        return nullptr;
    }
    const size_t deleted = std::min<size_t>(deleteCount, length - start);
    CopyText(dest + start, dest + start + deleted);
    return dest;
}

wchar_t* CutText(wchar_t* text, int32_t start, uint32_t length,
                 wchar_t* (*copy)(wchar_t*, const wchar_t*, size_t)) noexcept {
    const size_t whole = UnitLength(text);
    if (static_cast<size_t>(std::abs(int64_t{start})) > whole) {
        *text = L'\0';
        return nullptr;
    }
    // Callers rely on it that 0 gives the empty text, and a negative start the units in front of the text.
    const wchar_t* const source = start == 0 ? text + whole : text + start - 1;
    // Not more than the text held, so that it cannot grow into what follows it.
    copy(text, source, std::min<size_t>(length, whole) + 1);
    return text;
}

int FormatText(wchar_t* dest, uint32_t capacity, const wchar_t* format, va_list arguments) noexcept {
    if (capacity == 0) return -1;
    const int written = _vsnwprintf(dest, capacity, format, arguments);
    if (written >= 0 && static_cast<uint32_t>(written) < capacity) return written;
    dest[capacity - 1] = L'\0';
    return -1;
}

namespace checked {

wchar_t* Strcpy(wchar_t* dest, const wchar_t* source) noexcept {
    constexpr wchar_t kName[] = L"UtilStrcpy";
    if (!IsStringPtr(kName, source, kSource)) return nullptr;
    if (!HasRoom(kName, dest, kDestination, Length(kName, source) + 1)) return nullptr;
    EmptyBeforeCopy(dest, source);
    return CopyText(dest, source);
}

wchar_t* Strcat(wchar_t* dest, const wchar_t* source) noexcept {
    constexpr wchar_t kName[] = L"UtilStrcat";
    if (!IsStringPtr(kName, source, kSource) || !IsStringPtr(kName, dest, kDestination)) return nullptr;
    if (!HasRoom(kName, dest, kDestination, Length(kName, source) + Length(kName, dest) + 1)) return nullptr;
    return AppendText(dest, source);
}

wchar_t* Strncpy(wchar_t* dest, const wchar_t* source, size_t capacity) noexcept {
    constexpr wchar_t kName[] = L"UtilStrncpy";
    if (!IsStringPtr(kName, source, kSource)) return nullptr;
    const uint64_t units = std::min<uint64_t>(capacity, Length(kName, source) + 1);
    if (!HasRoom(kName, dest, kDestination, units)) return nullptr;
    if (capacity > 0) EmptyBeforeCopy(dest, source);
    return CopyTextBounded(dest, source, capacity);
}

int Strcmp(const wchar_t* left, const wchar_t* right) noexcept {
    return AreStrings(L"UtilStrcmp", left, right) ? CompareUnits(left, right) : 0;
}

int Stricmp(const wchar_t* left, const wchar_t* right) noexcept {
    return AreStrings(L"UtilStricmp", left, right) ? _wcsicmp(left, right) : 0;
}

int Strncmp(const wchar_t* left, const wchar_t* right, uint32_t count) noexcept {
    return AreReadable(L"UtilStrncmp", left, right, count) ? CompareUnits(left, right, count) : 0;
}

int Strnicmp(const wchar_t* left, const wchar_t* right, uint32_t count) noexcept {
    return AreReadable(L"UtilStrnicmp", left, right, count) ? _wcsnicmp(left, right, count) : 0;
}

const wchar_t* Strstr(const wchar_t* text, const wchar_t* wanted) noexcept {
    // Readers of reports know the function by this name.
    return AreStrings(L"UtilVScanf", text, wanted) ? wcsstr(text, wanted) : nullptr;
}

const wchar_t* Strchr(const wchar_t* text, wchar_t unit) noexcept {
    return IsStringPtr(L"UtilStrchr", text, kString) ? FindUnit(text, unit) : nullptr;
}

const wchar_t* Strrchr(const wchar_t* text, wchar_t unit) noexcept {
    return IsStringPtr(L"UtilStrrchr", text, kString) ? FindLastUnit(text, unit) : nullptr;
}

size_t Strlen(const wchar_t* text) noexcept {
    return IsStringPtr(L"UtilStrlen", text, kString) ? UnitLength(text) : 0;
}

void* Memcpy(void* dest, const void* source, uint32_t bytes) noexcept {
    constexpr wchar_t kName[] = L"UtilMemcpy";
    if (bytes == 0) return dest;
    // Twice what is copied: callers rely on it.
    if (!IsWPtr(kName, dest, kDestination, AsSize(uint64_t{bytes} * 2))) return nullptr;
    if (!IsRPtr(kName, source, kSource, bytes)) return nullptr;
    return MoveBytes(dest, source, bytes);
}

void* Memset(void* dest, int byte, uint32_t bytes) noexcept {
    if (!IsWPtr(L"UtilMemset", dest, kDestination, bytes)) return nullptr;
    return FillBytes(dest, byte, bytes);
}

void Ltrim(wchar_t* text) noexcept {
    if (IsChangeableString(L"UtilLtrim", text)) TrimTextLeft(text);
}

void Rtrim(wchar_t* text) noexcept {
    if (IsChangeableString(L"UtilRtrim", text)) TrimTextRight(text);
}

wchar_t* Stuff(wchar_t* dest, uint32_t position, uint32_t deleteCount, const wchar_t* text) noexcept {
    constexpr wchar_t kName[] = L"UtilStuffA"; // readers of reports know it by this name
    if (!IsStringPtr(kName, dest, kDestination)) return nullptr;
    if (text && !IsStringPtr(kName, text, kSource)) return nullptr;
    const uint64_t units = Length(kName, dest) + (text ? Length(kName, text) : 0);
    // Nothing is left to test when more is deleted than there is.
    if (!HasRoom(kName, dest, kDestination, units - std::min<uint64_t>(deleteCount, units))) return nullptr;
    return StuffText(dest, position, deleteCount, text);
}

wchar_t* Substr(wchar_t* text, int32_t start, uint32_t length) noexcept {
    return IsChangeableString(L"UtilSubstr", text) ? CutText(text, start, length, Strncpy) : nullptr;
}

int SafeSprintf(wchar_t* dest, uint32_t capacity, const wchar_t* format, va_list arguments) noexcept {
    constexpr wchar_t kName[] = L"UtilSafeSprintf";
    if (!IsStringPtr(kName, format, L"Format") || !HasRoom(kName, dest, kDestination, capacity)) return 0;
    const int written = FormatText(dest, capacity, format, arguments);
    if (written < 1) DebugWriteAs(nullptr, 0, L"%s: destination buffer too small\n", kName);
    return written;
}

} // namespace checked
} // namespace vxut
