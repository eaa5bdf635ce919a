// Dates of a locale read and written, against the automation library of the system; and the forms of other
// programs. The text is the same for both.
#include "support.h"
#include "util/dates.h"

// After windows.h, which it needs:
#include <oleauto.h>

#include <string>

namespace {

constexpr LCID kGerman = 1031;
constexpr wchar_t kText[] = L"13.11.2026 16:30:05";

// Automation dates are days.
constexpr double kDate = 46339.0 + 16.5 / 24;

void ReadLocale(benchmark::State& state, LCID locale) {
    for (auto _ : state) {
        SYSTEMTIME time;
        if (UtilLocSystemTimeFromLocaleString(locale, kText, &time, 0) != 0) state.SkipWithError("no date");
        benchmark::DoNotOptimize(time);
    }
}

void ReadAutomation(benchmark::State& state) {
    std::wstring text = kText; // the declaration asks for a text that may be changed
    for (auto _ : state) {
        double date = 0;
        SYSTEMTIME time;
        if (FAILED(VarDateFromStr(text.data(), kGerman, 0, &date)) || !VariantTimeToSystemTime(date, &time))
            state.SkipWithError("no date");
        benchmark::DoNotOptimize(time);
    }
}

void WriteLocale(benchmark::State& state) {
    const SYSTEMTIME time = {2026, 11, 0, 13, 16, 30, 5, 0};
    VARIANT text;
    VariantInit(&text);
    for (auto _ : state) UtilLocLocaleStringFromSystemTime(kGerman, &time, &text);
    VariantClear(&text);
}

void WriteAutomation(benchmark::State& state) {
    for (auto _ : state) {
        BSTR text = nullptr;
        VarBstrFromDate(kDate, kGerman, 0, &text);
        SysFreeString(text);
    }
}

// What the system's own formatting takes.
void WriteFloor(benchmark::State& state) {
    const SYSTEMTIME time = {2026, 11, 0, 13, 16, 30, 5, 0};
    wchar_t text[40];
    for (auto _ : state) {
        GetDateFormatW(kGerman, DATE_SHORTDATE, &time, nullptr, text, 40);
        GetTimeFormatW(kGerman, 0, &time, nullptr, text, 40);
        benchmark::DoNotOptimize(text);
    }
}

void ReadForm(benchmark::State& state, const wchar_t* text) {
    for (auto _ : state) {
        SYSTEMTIME time;
        UtilLocDateTimeToSYSTEMTIME(text, &time);
        benchmark::DoNotOptimize(time);
    }
}

BENCHMARK_CAPTURE(ReadLocale, vxut, kGerman)->Name("ReadLocale/vxut");
BENCHMARK(ReadAutomation)->Name("ReadLocale/automation");
// The user's locale is asked about at each call.
BENCHMARK_CAPTURE(ReadLocale, user, LOCALE_USER_DEFAULT)->Name("ReadUserLocale/vxut");
BENCHMARK(WriteLocale)->Name("WriteLocale/vxut");
BENCHMARK(WriteAutomation)->Name("WriteLocale/automation");
BENCHMARK(WriteFloor)->Name("WriteLocale/floor:format");
BENCHMARK_CAPTURE(ReadForm, mail, L"Fri, 13 Nov 2026 16:30:00 +0100")->Name("ReadMailDate/vxut");
BENCHMARK_CAPTURE(ReadForm, iso, L"2026-11-13T16:30:00+01:00")->Name("ReadIsoDate/vxut");

} // namespace
