#include "locale/compact_date.h"

#include "base/digits.h"
#include "locale/system_time.h"

#include <cstdlib>

namespace vxut {
namespace {

// The fields behind the year, each of two digits.
constexpr WORD SYSTEMTIME::* kFields[] = {&SYSTEMTIME::wMonth, &SYSTEMTIME::wDay, &SYSTEMTIME::wHour,
                                          &SYSTEMTIME::wMinute, &SYSTEMTIME::wSecond};

WORD Number(const String& text, int64_t start, int64_t count) {
    return static_cast<WORD>(_wtoi(text.Mid(start, count).Text()));
}

} // namespace

bool IsDigits(const String& text) {
    for (int64_t i = 0; i < text.Length(); ++i)
        if (DigitOf(text[i], 10) == 10) return false;
    return true;
}

bool IsCompactDate(const String& text) {
    return (text.Length() == 8 || text.Length() == 14) && IsDigits(text);
}

SYSTEMTIME ParseCompactDate(const String& text) {
    SYSTEMTIME result = EmptyTime();
    result.wYear = Number(text, 0, 4);
    int64_t at = 4;
    for (WORD SYSTEMTIME::* const field : kFields) {
        result.*field = Number(text, at, 2);
        at += 2;
    }
    return result;
}

String CompactDate(const SYSTEMTIME& time) {
    String text;
    text.Format(L"%04d%02d%02d%02d%02d%02d", time.wYear, time.wMonth, time.wDay, time.wHour, time.wMinute,
                time.wSecond);
    return text;
}

} // namespace vxut
