#include "locale/date_forms.h"

#include "base/digits.h"
#include "locale/system_time.h"
#include "locale/time_zone.h"
#include "text/shared_regex.h"
#include "variant/variant.h"

#include <cstdlib>
#include <cwchar>
#include <iterator>
#include <string_view>

namespace vxut {
namespace {

constexpr int64_t kMillisecondsInMinute = 60'000;
constexpr int64_t kMillisecondsInDay = 24 * 60 * kMillisecondsInMinute;

constexpr wchar_t kInternetDate[] =
    LR"((?:\w{3},\s+)?(\d+)\s+(\w{3})\s+(\d{4})\s+(\d+):(\d+):(\d+))"
    LR"((\s+(?:[+-]\d{4}|GMT|EST|EDT|CST|CDT|MST|MDT|PST|PDT|UT))?)";
enum InternetGroup { kDay = 1, kMonth, kYear, kHour, kMinute, kSecond, kZone };

constexpr const wchar_t* kMonths[] = {L"jan", L"feb", L"mar", L"apr", L"may", L"jun",
                                      L"jul", L"aug", L"sep", L"oct", L"nov", L"dec"};

clsSharedRegEx internetDatePattern(kInternetDate);

WORD Number(const String& digits) { return static_cast<WORD>(_wtoi(digits.Text())); }

// Returns 0 for a name of no month.
WORD MonthOf(const String& name) {
    for (size_t index = 0; index < std::size(kMonths); ++index)
        if (_wcsicmp(name.Text(), kMonths[index]) == 0) return static_cast<WORD>(index + 1);
    return 0;
}

// Reads the digits of a text from its start on.
class DigitScanner {
public:
    explicit DigitScanner(const String& text) : rest_(text.Text(), static_cast<size_t>(text.Length())) {}

    bool IsAtEnd() const { return rest_.empty(); }
    bool IsAt(std::wstring_view units) const {
        return !IsAtEnd() && units.find(rest_.front()) != std::wstring_view::npos;
    }

    // Steps over one separator, if there is one, and reads count digits, or as many as there are with a count
    // of 0. Returns false, with the number unchanged, if there are fewer digits or none.
    bool ReadDigits(size_t count, std::wstring_view separators, WORD& number) {
        if (IsAt(separators)) rest_.remove_prefix(1);
        size_t digits = 0;
        uint32_t value = 0; // wraps where nobody needs the number
        while (digits < rest_.size() && (count == 0 || digits < count) && DigitOf(rest_[digits], 10) < 10)
            value = value * 10 + DigitOf(rest_[digits++], 10);
        if (digits < count || digits == 0) return false;
        rest_.remove_prefix(digits);
        number = static_cast<WORD>(value);
        return true;
    }

private:
    std::wstring_view rest_;
};

// The digits are separators too: callers rely on what that makes of dates without separators.
constexpr std::wstring_view kDateSeparators = L"-\\x201";
constexpr std::wstring_view kSigns = L"+-\x2010\x2212";

bool ReadCalendarDate(DigitScanner& scanner, SYSTEMTIME& date) {
    return scanner.ReadDigits(4, {}, date.wYear) && !scanner.IsAtEnd() &&
           scanner.ReadDigits(2, kDateSeparators, date.wMonth) && !scanner.IsAtEnd() &&
           scanner.ReadDigits(2, kDateSeparators, date.wDay);
}

// What follows the hour may be missing.
bool ReadTimeOfDay(DigitScanner& scanner, SYSTEMTIME& time) {
    if (!scanner.IsAt(L"T")) return true;
    if (!scanner.ReadDigits(2, L"T", time.wHour)) return false;
    scanner.ReadDigits(2, L":", time.wMinute);
    scanner.ReadDigits(2, L":", time.wSecond);
    WORD fraction = 0;
    scanner.ReadDigits(0, L".,", fraction);
    if (time.wHour == 24) {
        time.wHour = 0;
        AddMilliseconds(time, kMillisecondsInDay);
    }
    return true;
}

// Reads the zone and moves the time to UTC.
bool ApplyZone(DigitScanner& scanner, SYSTEMTIME& time) {
    if (!scanner.IsAt(kSigns)) {
        time.wDayOfWeek = kNoDayOfWeek;
        time = UtcOfLocalTime(time);
        return true;
    }
    const int64_t sign = scanner.IsAt(L"+") ? -1 : 1;
    WORD hours = 0;
    WORD minutes = 0;
    if (!scanner.ReadDigits(2, kSigns, hours)) return false;
    if (!scanner.IsAtEnd() && !scanner.ReadDigits(2, L":", minutes)) return false;
    AddMilliseconds(time, sign * (hours * 60 + minutes) * kMillisecondsInMinute);
    return true;
}

} // namespace

bool ParseInternetDate(SYSTEMTIME& result, const String& text) {
    clsRegExMatchList groups;
    if (!internetDatePattern.Match(text, &groups)) return true;
    result = {.wYear = Number(groups.get(kYear).text),
              .wMonth = MonthOf(groups.get(kMonth).text),
              .wDayOfWeek = kNoDayOfWeek,
              .wDay = Number(groups.get(kDay).text),
              .wHour = Number(groups.get(kHour).text),
              .wMinute = Number(groups.get(kMinute).text),
              .wSecond = Number(groups.get(kSecond).text),
              .wMilliseconds = 0};
    const String zone = groups.get(kZone).text.Right(5); // a sign and four digits, or a name
    if (zone[0] != L'+' && zone[0] != L'-') return true;
    const int64_t minutes = Number(zone.Mid(1, 2)) * 60 + Number(zone.Mid(3, 2));
    AddMilliseconds(result, (zone[0] == L'+' ? -minutes : minutes) * kMillisecondsInMinute);
    return true;
}

bool ParseIso8601Date(SYSTEMTIME& result, const String& text) {
    DigitScanner scanner(text);
    return ReadCalendarDate(scanner, result) && ReadTimeOfDay(scanner, result) && ApplyZone(scanner, result);
}

bool ParseVariantDate(SYSTEMTIME& result, const String& text) {
    clsVariant value;
    const std::wstring_view units(text.Text(), static_cast<size_t>(text.Length()));
    if (FAILED(value.AssignText(units)) || !value.ChangeType(VT_DATE) || value.date == 0.0) return false;
    SYSTEMTIME time = EmptyTime();
    if (!VariantTimeToSystemTime(value.date, &time)) return false;
    result = time;
    return true;
}

} // namespace vxut
