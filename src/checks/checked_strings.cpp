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

// True of a text that can be read up to its terminator. The system's probe of a text ends after a number of
// units; a longer one is read to its end, and reported by SafeStrlen() if it has none.
bool IsText(const wchar_t* function, const wchar_t* text, const wchar_t* label) {
    if (!IsStringPtr(function, text, label)) return false;
    if (!text || UnitLength(text, kMostProbedUnits) < kMostProbedUnits) return true;
    return text[SafeStrlen(function, text)] == L'\0';
}

bool AreTexts(const wchar_t* function, const wchar_t* left, const wchar_t* right) {
    return IsText(function, left, kParameter1) && IsText(function, right, kParameter2);
}

bool IsWritable(const wchar_t* function, wchar_t* dest, const wchar_t* label, uint64_t units) {
    return IsWPtr(function, dest, label, AsSize(units * sizeof(wchar_t)));
}

// The bytes of each text that a comparison of at most count units reads: up to the first units that differ or
// end, or of which one is not readable, these included.
template <class AreSame>
uint32_t ComparedBytes(const wchar_t* left, const wchar_t* right, uint32_t count, AreSame areSame) {
    uint64_t units = 0;
    bool goesOn = true;
    while (goesOn && units < count) {
        goesOn = ProbeRead(left + units, sizeof *left) && ProbeRead(right + units, sizeof *right) &&
                 left[units] != L'\0' && areSame(left[units], right[units]);
        ++units;
    }
    return AsSize(units * sizeof *left);
}

bool AreComparable(const wchar_t* function, const wchar_t* left, const wchar_t* right, uint32_t bytes) {
    return IsRPtr(function, left, kParameter1, bytes) && IsRPtr(function, right, kParameter2, bytes);
}

bool IsChangeableText(const wchar_t* function, wchar_t* text) {
    return IsText(function, text, kString) && IsWritable(function, text, kString, Length(function, text) + 1);
}

// Empties the destination before anything is copied, so that a source that overlaps its first unit ends
// there. Callers rely on this order.
void EmptyBeforeCopy(wchar_t* dest, const wchar_t* source) {
    if (dest != source) *dest = L'\0';
}

// The function only deletes. A caller that asks for insertion gets an access violation, which hosts rely on;
// it is raised before anything is changed.
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
    // Callers rely on both: 0 selects the terminator, and a negative start the units before the text.
    const wchar_t* const source = start == 0 ? text + whole : text + start - 1;
    // At most as many units as the text had: it must not grow into what follows it.
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
    if (!IsText(kName, source, kSource)) return nullptr;
    if (!IsWritable(kName, dest, kDestination, Length(kName, source) + 1)) return nullptr;
    EmptyBeforeCopy(dest, source);
    return CopyText(dest, source);
}

wchar_t* Strcat(wchar_t* dest, const wchar_t* source) noexcept {
    constexpr wchar_t kName[] = L"UtilStrcat";
    if (!IsText(kName, source, kSource) || !IsText(kName, dest, kDestination)) return nullptr;
    if (!IsWritable(kName, dest, kDestination, Length(kName, source) + Length(kName, dest) + 1))
        return nullptr;
    return AppendText(dest, source);
}

wchar_t* Strncpy(wchar_t* dest, const wchar_t* source, size_t capacity) noexcept {
    constexpr wchar_t kName[] = L"UtilStrncpy";
    if (!IsText(kName, source, kSource)) return nullptr;
    const uint64_t units = std::min<uint64_t>(capacity, Length(kName, source) + 1);
    if (!IsWritable(kName, dest, kDestination, units)) return nullptr;
    if (capacity > 0) EmptyBeforeCopy(dest, source);
    return CopyTextBounded(dest, source, capacity);
}

int Strcmp(const wchar_t* left, const wchar_t* right) noexcept {
    return AreTexts(L"UtilStrcmp", left, right) ? CompareUnits(left, right) : 0;
}

int Stricmp(const wchar_t* left, const wchar_t* right) noexcept {
    return AreTexts(L"UtilStricmp", left, right) ? _wcsicmp(left, right) : 0;
}

int Strncmp(const wchar_t* left, const wchar_t* right, uint32_t count) noexcept {
    const auto areSame = [](wchar_t a, wchar_t b) { return a == b; };
    const uint32_t bytes = ComparedBytes(left, right, count, areSame);
    return AreComparable(L"UtilStrncmp", left, right, bytes) ? CompareUnits(left, right, count) : 0;
}

int Strnicmp(const wchar_t* left, const wchar_t* right, uint32_t count) noexcept {
    const auto areSame = [](wchar_t a, wchar_t b) { return a == b || _wcsnicmp(&a, &b, 1) == 0; };
    const uint32_t bytes = ComparedBytes(left, right, count, areSame);
    return AreComparable(L"UtilStrnicmp", left, right, bytes) ? _wcsnicmp(left, right, count) : 0;
}

const wchar_t* Strstr(const wchar_t* text, const wchar_t* wanted) noexcept {
    // Reports name the function so; readers of logs rely on it.
    return AreTexts(L"UtilVScanf", text, wanted) ? std::wcsstr(text, wanted) : nullptr;
}

const wchar_t* Strchr(const wchar_t* text, wchar_t unit) noexcept {
    return IsText(L"UtilStrchr", text, kString) ? FindUnit(text, unit) : nullptr;
}

const wchar_t* Strrchr(const wchar_t* text, wchar_t unit) noexcept {
    return IsText(L"UtilStrrchr", text, kString) ? FindLastUnit(text, unit) : nullptr;
}

size_t Strlen(const wchar_t* text) noexcept {
    return IsText(L"UtilStrlen", text, kString) ? UnitLength(text) : 0;
}

void* Memcpy(void* dest, const void* source, uint32_t bytes) noexcept {
    constexpr wchar_t kName[] = L"UtilMemcpy";
    if (bytes == 0) return dest;
    // Twice the bytes that are copied. Callers rely on it.
    if (!IsWPtr(kName, dest, kDestination, AsSize(uint64_t{bytes} * 2))) return nullptr;
    if (!IsRPtr(kName, source, kSource, bytes)) return nullptr;
    return MoveBytes(dest, source, bytes);
}

void* Memset(void* dest, int byte, uint32_t bytes) noexcept {
    if (!IsWPtr(L"UtilMemset", dest, kDestination, bytes)) return nullptr;
    return FillBytes(dest, byte, bytes);
}

void Ltrim(wchar_t* text) noexcept {
    if (IsChangeableText(L"UtilLtrim", text)) TrimTextLeft(text);
}

void Rtrim(wchar_t* text) noexcept {
    if (IsChangeableText(L"UtilRtrim", text)) TrimTextRight(text);
}

wchar_t* Stuff(wchar_t* dest, uint32_t position, uint32_t deleteCount, const wchar_t* text) noexcept {
    constexpr wchar_t kName[] = L"UtilStuffA"; // reports name the function so
    if (!IsText(kName, dest, kDestination)) return nullptr;
    if (text && !IsText(kName, text, kSource)) return nullptr;
    const uint64_t length = Length(kName, dest);
    const uint32_t start = position - 1;
    const uint64_t deleted = start <= length ? std::min<uint64_t>(deleteCount, length - start) : 0;
    const uint64_t units = length - deleted + (text ? Length(kName, text) : 0) + 1;
    if (!IsWritable(kName, dest, kDestination, units)) return nullptr;
    return StuffText(dest, position, deleteCount, text);
}

wchar_t* Substr(wchar_t* text, int32_t start, uint32_t length) noexcept {
    return IsChangeableText(L"UtilSubstr", text) ? CutText(text, start, length, Strncpy) : nullptr;
}

int SafeSprintf(wchar_t* dest, uint32_t capacity, const wchar_t* format, va_list arguments) noexcept {
    constexpr wchar_t kName[] = L"UtilSafeSprintf";
    if (!IsText(kName, format, L"Format") || !IsWritable(kName, dest, kDestination, capacity)) return 0;
    const int written = FormatText(dest, capacity, format, arguments);
    if (written < 1) DebugWriteAs(nullptr, 0, L"%s: destination buffer too small\n", kName);
    return written;
}

} // namespace checked
} // namespace vxut
