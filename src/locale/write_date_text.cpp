#include "locale/date.h"
#include "locale/date_text.h"

#include <cwchar>
#include <cwctype>

namespace vxut {
namespace {

constexpr int kTextUnits = 20;
constexpr int kPictureUnits = 256;
constexpr WORD kFirstYearOfSystem = 1601;

void AppendNumber(String& text, const wchar_t* format, int number) {
    String digits;
    digits.Format(format, number);
    text.Append(digits);
}

// Writes what a run of equal letters in a picture stands for. Other units stand for nothing.
void AppendField(String& text, wchar_t letter, int64_t count, const clsDate& date) {
    switch (std::towlower(letter)) {
        case L'd': // longer runs are names
            if (count <= 2) AppendNumber(text, count == 1 ? L"%d" : L"%02d", date.Day());
            break;
        case L'm':
            AppendNumber(text, count == 1 ? L"%d" : L"%02d", date.Month());
            break;
        case L'y':
            AppendNumber(text, count == 2 ? L"%02d" : L"%04d", count == 2 ? date.Year() % 100 : date.Year());
            break;
        default:
            break;
    }
}

bool IsField(wchar_t unit) { return unit != 0 && std::wcschr(L"dDmMyY", unit) != nullptr; }

// Writes a date after a picture such as "dd.MM.yyyy".
String Pictured(const String& picture, const clsDate& date) {
    String text;
    for (int64_t at = 0; at < picture.Length();) {
        bool isField = IsField(picture[at]);
        if (picture[at] == L'"') {
            for (++at; at < picture.Length() && picture[at] != L'"'; ++at) text.Append(picture[at]);
            ++at;
            isField = true; // the run behind a quoted text is never copied: callers rely on it
        }
        const wchar_t unit = picture[at];
        if (!isField) {
            text.Append(unit);
            ++at;
            continue;
        }
        const int64_t start = at;
        while (at < picture.Length() && picture[at] == unit) ++at;
        AppendField(text, unit, at - start, date);
    }
    return text;
}

String PicturedDate(uint32_t lcid, const SYSTEMTIME& time) {
    wchar_t picture[kPictureUnits] = L"";
    GetLocaleInfoW(lcid, LOCALE_SSHORTDATE, picture, kPictureUnits);
    return Pictured(picture, clsDate(time.wYear, time.wMonth, time.wDay)).Left(kTextUnits - 1);
}

// Returns an empty text with the reason if the system does not format the date.
String SystemDate(uint32_t lcid, const SYSTEMTIME* time, DWORD& error) {
    wchar_t text[kTextUnits];
    if (GetDateFormatW(lcid, DATE_SHORTDATE, time, nullptr, text, kTextUnits)) return text;
    error = GetLastError();
    return {};
}

String ShortDate(uint32_t lcid, const SYSTEMTIME* time) {
    DWORD error = ERROR_SUCCESS;
    String text = SystemDate(lcid, time, error);
    if (!text.IsEmpty()) return text;
    if (error == ERROR_INVALID_PARAMETER && time && time->wYear < kFirstYearOfSystem)
        text = PicturedDate(lcid, *time);
    return text.IsEmpty() ? SystemDate(lcid, nullptr, error) : text;
}

} // namespace

String DateText(uint32_t lcid, const SYSTEMTIME* time) {
    String text = ShortDate(lcid, time);
    wchar_t timeOfDay[kTextUnits];
    const bool hasTime = !time || time->wHour != 0 || time->wMinute != 0 || time->wSecond != 0;
    if (hasTime && GetTimeFormatW(lcid, 0, time, nullptr, timeOfDay, kTextUnits)) {
        text.Append(L' ');
        text.Append(timeOfDay);
    }
    return text;
}

} // namespace vxut
