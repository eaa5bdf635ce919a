#include "util/dates.h"

#include "base/guard.h"
#include "base/text_units.h"
#include "locale/compact_date.h"
#include "locale/date_forms.h"
#include "locale/date_text.h"
#include "locale/system_time.h"
#include "locale/time_zone.h"
#include "variant/variant.h"

#include <utility>

namespace {

using namespace vxut;

static_assert(UTIL_DATE_ERR_FORMAT == kDateFailed);
static_assert(UTIL_DATE_EXPAND_YEAR == kDateExpandYear && UTIL_DATE_NEEDS_ALL_FIELDS == kDateNeedsAllFields);

constexpr int64_t kCompactDigits = 14;

void Empty(wchar_t* buffer, uint32_t capacity) {
    if (buffer && capacity > 0) buffer[0] = L'\0';
}

void Copy(const String& text, wchar_t* buffer, uint32_t capacity) {
    if (buffer) CopyTextBounded(buffer, text.Text(), capacity);
}

bool WriteCompactDate(const String& compact, wchar_t* buffer, uint32_t capacity) {
    Empty(buffer, capacity);
    String digits(compact);
    digits.TrimRight();
    digits.TrimLeft();
    if (digits.IsEmpty()) return true;
    const SYSTEMTIME time = ParseCompactDate(digits);
    const String text = DateText(LOCALE_USER_DEFAULT, &time);
    if (text.Length() > capacity) return false;
    Copy(text, buffer, capacity);
    return true;
}

bool ReadCompactDate(const String& text, wchar_t* buffer, uint32_t capacity, uint32_t flags) {
    if (IsCompactDate(text)) {
        Copy(text + String(L'0', kCompactDigits - text.Length()), buffer, capacity);
        return true;
    }
    SYSTEMTIME time;
    if (ParseDateText(LOCALE_USER_DEFAULT, text, time, flags) != kDateOk) return false;
    Copy(CompactDate(time), buffer, capacity);
    return true;
}

template <class Conversion>
int32_t ConvertInPlace(SYSTEMTIME* time, Conversion convert) {
    if (!time || time->wYear == 0) return E_INVALIDARG;
    *time = convert(*time);
    return 0;
}

} // namespace

int32_t UtilLocSystemTimeFromLocaleString(uint32_t lcid, const wchar_t* text, SYSTEMTIME* target,
                                          uint32_t flags) {
    return Guarded<int32_t>(UTIL_DATE_ERR_FORMAT, [&]() -> int32_t {
        return target ? ParseDateText(lcid, text, *target, flags) : UTIL_DATE_ERR_FORMAT;
    });
}

int32_t UtilLocLocaleStringFromSystemTime(uint32_t lcid, const SYSTEMTIME* time, VARIANT* target) {
    Guarded([&] {
        const String text = DateText(lcid, time);
        clsVariant value;
        if (!target || FAILED(value.AssignText({text.Text(), static_cast<size_t>(text.Length())}))) return;
        if (SUCCEEDED(VariantClear(target))) std::swap(*target, static_cast<VARIANT&>(value));
    });
    return 0;
}

int UtilDateTimeToLocaleString(const wchar_t* compact, wchar_t* buffer, uint32_t capacity) {
    return Guarded(0, [&] { return WriteCompactDate(compact, buffer, capacity) ? 1 : 0; });
}

int UtilDateTimeFromLocaleString(const wchar_t* text, wchar_t* buffer, uint32_t capacity, uint32_t flags) {
    return Guarded(0, [&] {
        Empty(buffer, capacity);
        return text && ReadCompactDate(text, buffer, capacity, flags) ? 1 : 0;
    });
}

int32_t UtilLocDateTimeToSYSTEMTIME(const wchar_t* text, SYSTEMTIME* target) {
    Guarded([&] {
        if (!target) return;
        *target = EmptyTime();
        *target = ParseAnyDate(text);
    });
    return 0;
}

int32_t UtilLocConvertLocalTimeToUTCTime(SYSTEMTIME* time) {
    return Guarded<int32_t>(E_INVALIDARG, [&] { return ConvertInPlace(time, UtcOfLocalTime); });
}

int32_t UtilLocConvertUTCTimeToLocalTime(SYSTEMTIME* time) {
    return Guarded<int32_t>(E_INVALIDARG, [&] { return ConvertInPlace(time, LocalTimeOfUtc); });
}

int32_t UtilLocGetDSTStartAndEndInUTC(uint16_t year, SYSTEMTIME* start, SYSTEMTIME* end) {
    Guarded([&] {
        const scDaylightSaving saving = DaylightSavingOf(year);
        if (start) *start = saving.start;
        if (end) *end = saving.end;
    });
    return 0;
}
