// vlm country, vlm language: facts about countries, and numbers of languages.
#include "host/groups.h"

#include "host/arguments.h"
#include "host/output.h"
#include "host/text.h"

#include <util.h>
#include <windows.h>
// After windows.h, which it needs:
#include <oleauto.h>

#include <string>
#include <vector>

namespace vlm {

namespace {

struct FactName {
    const wchar_t* name; // as --field takes it and JSON shows it
    const wchar_t* label;
    uint32_t what;
};
constexpr FactName kFacts[] = {
    {L"name", L"Name", UTIL_COUNTRY_NAME},
    {L"native", L"Native name", UTIL_COUNTRY_NATIVE_NAME},
    {L"iso", L"ISO 3166 code", UTIL_COUNTRY_ISO},
    {L"locale", L"Locale", UTIL_COUNTRY_LOCALE},
    {L"calling", L"Calling code", UTIL_COUNTRY_CALLING_CODE},
    {L"currency", L"Currency", UTIL_COUNTRY_CURRENCY},
    {L"codepage", L"ANSI code page", UTIL_COUNTRY_CODE_PAGE},
};

// A fact; empty if it is not known.
struct Fact {
    std::wstring text;
    bool isNumber = false;
};

Fact Take(VARIANT& value) {
    Fact fact;
    fact.isNumber = value.vt == VT_I4;
    if (fact.isNumber && value.lVal != 0) fact.text = std::to_wstring(value.lVal);
    if (value.vt == VT_BSTR) fact.text.assign(value.bstrVal, SysStringLen(value.bstrVal));
    VariantClear(&value);
    return fact;
}

Fact FactOf(const std::wstring& key, uint32_t what) {
    VARIANT value;
    if (UtilLocGetCountryInfo(key.c_str(), what, &value) != 0) Fail(L"out of memory");
    return Take(value);
}

// A country that is known has a name, and nearly always a code as well.
bool IsCountry(const std::wstring& key) {
    return !FactOf(key, UTIL_COUNTRY_NAME).text.empty() || !FactOf(key, UTIL_COUNTRY_ISO).text.empty();
}

const FactName& FactNamed(const std::wstring& name) {
    for (const FactName& fact : kFacts)
        if (name == fact.name) return fact;
    FailUsage(L"unknown field: " + name);
}

std::wstring Quoted(const std::wstring& text) {
    std::wstring quoted = L"\"";
    for (const wchar_t unit : text) {
        if (unit == L'"' || unit == L'\\') quoted += L'\\';
        if (unit < L' ') {
            wchar_t escape[8];
            _snwprintf(escape, 8, L"\\u%04x", unit);
            quoted += escape;
        } else {
            quoted += unit;
        }
    }
    return quoted + L"\"";
}

std::wstring JsonOf(const std::wstring& key) {
    std::wstring object = L"{\"key\": " + Quoted(key);
    for (const FactName& name : kFacts) {
        const Fact fact = FactOf(key, name.what);
        if (fact.text.empty()) continue;
        object += L", " + Quoted(name.name) + L": " + (fact.isNumber ? fact.text : Quoted(fact.text));
    }
    return object + L"}";
}

void PrintFacts(const std::wstring& key, Output& out) {
    for (const FactName& name : kFacts) out.Field(name.label, Visible(FactOf(key, name.what).text));
}

ExitCode PrintList(Output& out) {
    BSTR list = nullptr;
    if (UtilLocGetCountryList(&list) != 0) Fail(L"out of memory");
    std::wstring names(list, SysStringLen(list));
    SysFreeString(list);
    std::replace(names.begin(), names.end(), L';', L'\n');
    out.Line(names);
    return kExitSuccess;
}

// Separates what is printed for several keys.
class Separator {
public:
    explicit Separator(const wchar_t* text) : text_(text) {}
    void Write(Output& out) {
        if (!isFirst_) out.Write(text_);
        isFirst_ = false;
    }

private:
    const wchar_t* text_;
    bool isFirst_ = true;
};

ExitCode RunCountry(const Arguments& arguments, Output& out) {
    if (arguments.Has(L"list")) return PrintList(out);
    if (!arguments.HasOperand(0)) FailUsage(L"too few arguments");
    const std::wstring* const field = arguments.Value(L"field");
    const bool isJson = arguments.Has(L"json");
    Separator separator(isJson ? L",\n " : field ? L"" : L"\n");
    Output errors(STD_ERROR_HANDLE);
    ExitCode code = kExitSuccess;
    if (isJson) out.Write(L"[");
    for (size_t index = 0; arguments.HasOperand(index); ++index) {
        const std::wstring& key = arguments.Operand(index);
        if (!IsCountry(key)) {
            errors.Line(L"vlm country: " + Visible(key) + L": unknown country");
            code = kExitFailure;
            continue;
        }
        separator.Write(out);
        if (isJson)
            out.Write(JsonOf(key));
        else if (field)
            out.Line(Visible(FactOf(key, FactNamed(*field).what).text));
        else
            PrintFacts(key, out);
    }
    if (isJson) out.Line(L"]");
    return code;
}

ExitCode RunLanguage(const Arguments& arguments, Output& out) {
    Output errors(STD_ERROR_HANDLE);
    ExitCode code = kExitSuccess;
    for (size_t index = 0; arguments.HasOperand(index); ++index) {
        const std::wstring& tag = arguments.Operand(index);
        VARIANT value;
        UtilLocGetLanguageInfo(tag.c_str(), UTIL_LANGUAGE_LOCALE, &value);
        const std::wstring number = Take(value).text;
        if (!number.empty()) {
            out.Field(Visible(tag), number);
            continue;
        }
        errors.Line(L"vlm language: " + Visible(tag) + L": unknown language");
        code = kExitFailure;
    }
    return code;
}

constexpr Option kCountryOptions[] = {
    {L"field", L"NAME", L"print one fact: name, native, iso, locale, calling, currency or codepage"},
    {L"json", nullptr, L"print an array of JSON objects"},
    {L"list", nullptr, L"print the names of all countries that have an ISO code"},
};

} // namespace

Command CountryCommand() {
    return {
        .name = L"country",
        .summary = L"Print facts about countries",
        .operands = L"[KEY...]",
        .help =
            L"A key is an ISO code, a car code, an English or native name, a language tag or the number\n"
            L"of a locale: DE, D, DEU, Germany, Deutschland, de-DE, 1031 and 0x0407 are one country.",
        .options = kCountryOptions,
        .run = RunCountry,
    };
}

Command LanguageCommand() {
    return {
        .name = L"language",
        .summary = L"Print the numbers of languages",
        .operands = L"TAG [TAG...]",
        .help =
            L"A tag with a country has the number of its locale, one without that of the primary language.",
        .run = RunLanguage,
    };
}

} // namespace vlm
