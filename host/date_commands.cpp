// vlm date: reads, writes and converts dates.
#include "host/groups.h"

#include "host/arguments.h"
#include "host/output.h"
#include "host/value_text.h"

#include <util.h>
#include <windows.h>
// After windows.h, which it needs:
#include <oleauto.h>

#include <cwctype>
#include <string>

namespace vlm {

namespace {

// A number, or a name such as "de-DE".
uint32_t LocaleOf(const Arguments& arguments) {
    const std::wstring* const locale = arguments.Value(L"locale");
    if (!locale) return LOCALE_USER_DEFAULT;
    if (!locale->empty() && std::iswdigit(locale->front())) return static_cast<uint32_t>(ParseInt(*locale));
    const LCID number = LocaleNameToLCID(locale->c_str(), 0);
    if (number == 0) FailUsage(L"unknown locale: " + *locale);
    return number;
}

// Digits, or a date in the form of another program.
SYSTEMTIME TimeOf(const std::wstring& text) {
    SYSTEMTIME time = {};
    UtilLocDateTimeToSYSTEMTIME(text.c_str(), &time);
    if (time.wYear == 0 && time.wMonth == 0) Fail(L"not a date: " + text);
    return time;
}

std::wstring LocaleText(uint32_t locale, const SYSTEMTIME* time) {
    VARIANT value;
    VariantInit(&value);
    UtilLocLocaleStringFromSystemTime(locale, time, &value);
    std::wstring text;
    if (V_VT(&value) == VT_BSTR) text = V_BSTR(&value);
    VariantClear(&value);
    return text;
}

ExitCode RunParse(const Arguments& arguments, Output& out) {
    const std::wstring& text = arguments.Operand(0);
    if (!arguments.Has(L"locale")) {
        out.Line(FormatTime(TimeOf(text)));
        return kExitSuccess;
    }
    uint32_t flags = 0;
    if (arguments.Has(L"expand-year")) flags |= UTIL_DATE_EXPAND_YEAR;
    if (arguments.Has(L"complete")) flags |= UTIL_DATE_NEEDS_ALL_FIELDS;
    SYSTEMTIME time = {};
    if (UtilLocSystemTimeFromLocaleString(LocaleOf(arguments), text.c_str(), &time, flags) != 0)
        Fail(L"not a date of this locale: " + text);
    out.Line(FormatTime(time));
    return kExitSuccess;
}

ExitCode RunFormat(const Arguments& arguments, Output& out) {
    const uint32_t locale = LocaleOf(arguments);
    if (!arguments.HasOperand(0)) {
        out.Line(LocaleText(locale, nullptr));
        return kExitSuccess;
    }
    const SYSTEMTIME time = TimeOf(arguments.Operand(0));
    out.Line(LocaleText(locale, &time));
    return kExitSuccess;
}

ExitCode Convert(const Arguments& arguments, Output& out, int32_t (*convert)(SYSTEMTIME*)) {
    SYSTEMTIME time = TimeOf(arguments.Operand(0));
    if (convert(&time) != 0 || time.wYear == 0) Fail(L"cannot be converted: " + arguments.Operand(0));
    out.Line(FormatTime(time));
    return kExitSuccess;
}

ExitCode RunUtc(const Arguments& arguments, Output& out) {
    return Convert(arguments, out, UtilLocConvertLocalTimeToUTCTime);
}

ExitCode RunLocal(const Arguments& arguments, Output& out) {
    return Convert(arguments, out, UtilLocConvertUTCTimeToLocalTime);
}

ExitCode RunSaving(const Arguments& arguments, Output& out) {
    SYSTEMTIME now;
    GetLocalTime(&now);
    const int32_t year = arguments.HasOperand(0) ? ParseInt(arguments.Operand(0)) : now.wYear;
    if (year < 1601 || year > 9999) FailUsage(L"a year is between 1601 and 9999");
    SYSTEMTIME start, end;
    UtilLocGetDSTStartAndEndInUTC(static_cast<uint16_t>(year), &start, &end);
    out.Field(L"Begin (UTC)", start.wYear ? FormatTime(start) : L"none");
    out.Field(L"End (UTC)", end.wYear ? FormatTime(end) : L"none");
    return kExitSuccess;
}

constexpr Option kLocale = {L"locale", L"LOCALE",
                            L"a name such as de-DE, or a number; the user's by default"};
constexpr Option kParseOptions[] = {
    {L"locale", L"LOCALE", L"read the short form of this locale: a name such as de-DE, or a number"},
    {L"expand-year", nullptr, L"with --locale: take years below 100 for those of 1930 to 2029"},
    {L"complete", nullptr, L"with --locale: fail if day, month or year is missing"},
};
constexpr Option kFormatOptions[] = {kLocale};

const Command kCommands[] = {
    {
        .name = L"parse",
        .summary = L"Read a date and print it in the form of ISO 8601",
        .operands = L"TEXT",
        .help = L"Without --locale the text may be digits (20261113163000), a date of an Internet message, "
                L"one of\n"
                L"ISO 8601, or a date as automation programs read it. Dates with an offset are converted to "
                L"UTC,\n"
                L"and so are dates of ISO 8601 without one, which are local.",
        .options = kParseOptions,
        .run = RunParse,
    },
    {
        .name = L"format",
        .summary = L"Print a date in the short form of a locale",
        .operands = L"[TEXT]",
        .help = L"The text is in one of the forms that \"parse\" reads without --locale. Without a text, "
                L"prints the\n"
                L"current local time.",
        .options = kFormatOptions,
        .run = RunFormat,
    },
    {
        .name = L"utc",
        .summary = L"Convert local time to UTC",
        .operands = L"DIGITS",
        .help = L"The time is given as digits, 20261113163000.",
        .run = RunUtc,
    },
    {
        .name = L"local",
        .summary = L"Convert UTC to local time",
        .operands = L"DIGITS",
        .help = L"The time is given as digits, 20261113163000.",
        .run = RunLocal,
    },
    {
        .name = L"saving",
        .summary = L"Print begin and end of daylight saving time",
        .operands = L"[YEAR]",
        .help = L"By the present rules of the user's time zone; for this year by default.",
        .run = RunSaving,
    },
};

} // namespace

Command DateCommands() {
    return {
        .name = L"date",
        .summary = L"Read, write and convert dates",
        .children = kCommands,
    };
}

} // namespace vlm
