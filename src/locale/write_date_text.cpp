#include "base/text_units.h"
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

// Room for a date, a blank and a time.
struct Buffer {
    wchar_t units[2 * kTextUnits] = L"";
};

void PictureDate(uint32_t lcid, const SYSTEMTIME& time, Buffer& text) {
    wchar_t picture[kPictureUnits] = L"";
    GetLocaleInfoW(lcid, LOCALE_SSHORTDATE, picture, kPictureUnits);
    const String date = Pictured(picture, clsDate(time.wYear, time.wMonth, time.wDay));
    CopyTextBounded(text.units, date.Text(), kTextUnits);
}

// Leaves an empty text if the date cannot be written.
void WriteShortDate(uint32_t lcid, const SYSTEMTIME* time, Buffer& text) {
    if (GetDateFormatW(lcid, DATE_SHORTDATE, time, nullptr, text.units, kTextUnits)) return;
    const DWORD error = GetLastError();
    text.units[0] = L'\0';
    if (error == ERROR_INVALID_PARAMETER && time && time->wYear < kFirstYearOfSystem)
        PictureDate(lcid, *time, text);
}

} // namespace

String DateText(uint32_t lcid, const SYSTEMTIME* time) {
    Buffer text;
    WriteShortDate(lcid, time, text);
    if (text.units[0] == L'\0') WriteShortDate(lcid, nullptr, text);
    const bool hasTime = !time || time->wHour != 0 || time->wMinute != 0 || time->wSecond != 0;
    wchar_t* const end = text.units + std::wcslen(text.units);
    if (hasTime && GetTimeFormatW(lcid, 0, time, nullptr, end + 1, kTextUnits)) *end = L' ';
    return text.units;
}

} // namespace vxut
