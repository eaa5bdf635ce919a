#include "locale/compact_date.h"
#include "locale/date_forms.h"
#include "locale/system_time.h"

namespace vxut {
namespace {

constexpr int64_t kMostDigits = 14;

using DateReader = bool (*)(SYSTEMTIME& result, const String& text);

bool IsPlausible(const SYSTEMTIME& time) {
    return time.wMonth >= 1 && time.wMonth <= 12 && time.wDay >= 1 && time.wDay <= 31 && time.wHour <= 24 &&
           time.wMinute <= 59 && time.wSecond <= 59;
}

} // namespace

SYSTEMTIME ParseAnyDate(const String& text) {
    SYSTEMTIME result = EmptyTime();
    String trimmed(text);
    trimmed.TrimRight();
    trimmed.TrimLeft();
    if (trimmed.IsEmpty()) {
        GetLocalTime(&result);
        return result;
    }
    if (trimmed.Length() <= kMostDigits && IsDigits(trimmed)) return ParseCompactDate(trimmed);
    for (const DateReader read : {ParseInternetDate, ParseIso8601Date}) {
        result = EmptyTime();
        if (read(result, trimmed) && IsPlausible(result)) return result;
    }
    result = EmptyTime();
    ParseVariantDate(result, trimmed);
    return result;
}

} // namespace vxut
