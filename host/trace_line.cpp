#include "host/trace_line.h"

#include "host/command.h"
#include "host/text.h"

#include <algorithm>
#include <cwchar>
#include <iterator>

namespace vlm {

namespace {

struct WeightWords {
    const wchar_t* words;
    Weight weight;
};
constexpr WeightWords kLeadingWords[] = {
    {L"Error: ", Weight::kError}, {L"ERR: ", Weight::kError}, {L"Warning: ", Weight::kWarning},
    {L"WRN: ", Weight::kWarning}, {L"HINT: ", Weight::kHint}, {L"info: ", Weight::kInfo},
};
constexpr WeightWords kWeightNames[] = {
    {L"error", Weight::kError},
    {L"warning", Weight::kWarning},
    {L"hint", Weight::kHint},
    {L"info", Weight::kInfo},
};

// Patterns of the columns: 'd' matches a decimal digit, 'x' a hexadecimal digit, anything else itself. The
// processor may have more than two digits.
constexpr std::wstring_view kTimes[] = {L"dd:dd:dd.ddd ", L"dd:dd.ddd "};
constexpr std::wstring_view kThread = L"xxxxxxxx/xx";
constexpr std::wstring_view kModuleEnd = L": ";

bool IsDigit(wchar_t unit) { return unit >= L'0' && unit <= L'9'; }
bool IsHexDigit(wchar_t unit) { return IsDigit(unit) || (unit >= L'a' && unit <= L'f'); }

bool Fits(std::wstring_view text, std::wstring_view pattern) {
    return text.size() >= pattern.size() &&
           std::equal(pattern.begin(), pattern.end(), text.begin(), [](wchar_t wanted, wchar_t unit) {
               if (wanted == L'd') return IsDigit(unit);
               return wanted == L'x' ? IsHexDigit(unit) : wanted == unit;
           });
}

size_t TimeUnits(std::wstring_view text) {
    for (const std::wstring_view pattern : kTimes)
        if (Fits(text, pattern)) return pattern.size();
    return 0;
}

// Parses the columns from the time on. False if they are missing.
bool ParseColumns(TraceLine& line, size_t at) {
    const std::wstring_view whole = line.whole;
    const size_t time = TimeUnits(whole.substr(at));
    if (time == 0 || !Fits(whole.substr(at + time), kThread)) return false;
    const size_t threadEnd = std::min(whole.find(L' ', at + time), whole.size());
    if (!Fits(whole.substr(threadEnd), L" d ")) return false;
    line.moduleEnd = at;
    line.threadBegin = at + time;
    line.threadEnd = threadEnd;
    line.thread = std::wcstoul(line.whole.c_str() + line.threadBegin, nullptr, 16);
    line.digit = whole[threadEnd + 1] - L'0';
    line.textBegin = std::min(whole.find_first_not_of(L' ', threadEnd + 2), whole.size());
    return true;
}

// The module is the first column and may contain its own separator.
bool FindColumns(TraceLine& line) {
    for (size_t at = 0; !ParseColumns(line, at); at += kModuleEnd.size()) {
        at = line.whole.find(kModuleEnd, at);
        if (at == std::wstring::npos) return false;
    }
    return true;
}

bool StartsWith(std::wstring_view text, const wchar_t* words) {
    const size_t length = std::wcslen(words);
    // NOLINTNEXTLINE(bugprone-suspicious-stringview-data-usage): compares no more than the length
    return text.size() >= length && _wcsnicmp(text.data(), words, length) == 0;
}

// The words may be preceded by the thread's name and by the empty module column of job and heap reports.
std::wstring_view WithoutPrefixes(std::wstring_view text) {
    if (text.starts_with(L'[')) {
        const size_t end = text.find(L"] ");
        if (end != std::wstring_view::npos) text.remove_prefix(end + 2);
    }
    text.remove_prefix(std::min(text.find_first_not_of(L' '), text.size()));
    if (text.starts_with(L':')) text.remove_prefix(std::min(text.find_first_not_of(L' ', 1), text.size()));
    return text;
}

Weight WeightOf(std::wstring_view text) {
    text = WithoutPrefixes(text);
    for (const WeightWords& row : kLeadingWords)
        if (StartsWith(text, row.words)) return row.weight;
    return Weight::kNone;
}

TraceLine::Kind KindOf(const TraceLine& line) {
    const bool isGreeting = line.moduleEnd == 0 && line.Text().ends_with(L']') &&
                            line.Text().find(L" [") != std::wstring_view::npos;
    if (isGreeting && line.Text().starts_with(L"++")) return TraceLine::Kind::kJoin;
    if (isGreeting && line.Text().starts_with(L"--")) return TraceLine::Kind::kLeave;
    return TraceLine::Kind::kLine;
}

} // namespace

Weight WeightNamed(const std::wstring& name) {
    for (const WeightWords& row : kWeightNames)
        if (name == row.words) return row.weight;
    FailUsage(L"unknown weight: " + name + L"; it is error, warning, hint or info");
}

TraceLine ParseTraceLine(const std::string& record) {
    TraceLine line;
    line.whole = WideOf(record, IsStrictUtf8(record) ? CP_UTF8 : CP_ACP);
    if (FindColumns(line)) line.kind = KindOf(line);
    line.weight = WeightOf(line.Text());
    return line;
}

std::wstring ProcessPathOf(const TraceLine& line) {
    const std::wstring_view text = line.Text();
    const size_t begin = text.find(L" [") + 2;
    return std::wstring(text.substr(begin, text.find(L']', begin) - begin));
}

} // namespace vlm
