#include "host/value_text.h"

#include "host/command.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cwchar>
#include <iterator>
#include <string_view>
#include <type_traits>

namespace vlm {

namespace {

struct BoolWord {
    const wchar_t* word;
    int value;
};
constexpr BoolWord kBoolWords[] = {{L"true", 1},  {L"yes", 1}, {L"on", 1},  {L"1", 1},
                                   {L"false", 0}, {L"no", 0},  {L"off", 0}, {L"0", 0}};

[[noreturn]] void FailValue(const std::wstring& text, const wchar_t* type) {
    FailUsage(L"'" + text + L"' is not " + type);
}

// Other characters become one that no number contains.
std::string AsciiOf(const std::wstring& text) {
    std::string ascii;
    for (const wchar_t unit : text) ascii += unit < 0x80 ? static_cast<char>(unit) : '?';
    return ascii;
}

std::wstring WideOfAscii(std::string_view ascii) { return {ascii.begin(), ascii.end()}; }

template <class Number, class... Base>
bool ParseWhole(std::string_view text, Number& number, Base... base) {
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number, base...);
    return result.ec == std::errc() && result.ptr == text.data() + text.size();
}

template <class Number>
bool ParseInteger(const std::wstring& text, Number& number) {
    const std::string ascii = AsciiOf(text);
    const size_t prefix = ascii.starts_with("0x") ? 2 : ascii.starts_with("x") ? 1 : 0;
    if (prefix == 0) return ParseWhole(ascii, number);
    std::make_unsigned_t<Number> pattern = 0;
    const bool isPattern = ParseWhole(std::string_view(ascii).substr(prefix), pattern, 16);
    number = static_cast<Number>(pattern);
    return isPattern;
}

template <size_t Count>
std::array<int32_t, Count> ParseTuple(const std::wstring& text, const wchar_t* type) {
    const bool isBracketed = text.size() >= 2 && text.front() == L'(' && text.back() == L')';
    std::wstring rest = isBracketed ? text.substr(1, text.size() - 2) : text;
    std::array<int32_t, Count> numbers = {};
    for (size_t index = 0; index < Count; ++index) {
        const bool isLast = index + 1 == Count;
        const size_t comma = isLast ? rest.size() : rest.find(L',');
        if (comma == std::wstring::npos || !ParseInteger(rest.substr(0, comma), numbers[index]))
            FailValue(text, type);
        rest.erase(0, isLast ? comma : comma + 1);
    }
    return numbers;
}

template <size_t Count>
std::wstring FormatTuple(const std::array<int32_t, Count>& numbers) {
    std::wstring text;
    for (const int32_t number : numbers) text += (text.empty() ? L"(" : L",") + std::to_wstring(number);
    return text + L")";
}

std::wstring FormatHex(uint64_t pattern) {
    char digits[16];
    const auto result = std::to_chars(digits, std::end(digits), pattern, 16);
    return L"0x" + WideOfAscii({digits, result.ptr});
}

int32_t AddExtent(const std::wstring& text, int32_t start, int32_t extent) {
    const int64_t end = int64_t{start} + extent;
    if (end != static_cast<int32_t>(end)) FailValue(text, L"a rectangle within 32 bits");
    return static_cast<int32_t>(end);
}

// The library adds without a look at the sign, so the difference is taken in the same way.
int32_t Extent(LONG start, LONG end) {
    return static_cast<int32_t>(static_cast<uint32_t>(end) - static_cast<uint32_t>(start));
}

} // namespace

int32_t ParseInt(const std::wstring& text) {
    int32_t number = 0;
    if (!ParseInteger(text, number)) FailValue(text, L"a number of 32 bits");
    return number;
}

int64_t ParseInt64(const std::wstring& text) {
    int64_t number = 0;
    uint64_t pattern = 0;
    if (ParseInteger(text, number)) return number;
    if (!ParseInteger(text, pattern)) FailValue(text, L"a number of 64 bits");
    return static_cast<int64_t>(pattern);
}

std::wstring FormatInt(int32_t number) { return std::to_wstring(number); }
std::wstring FormatInt64(int64_t number) { return std::to_wstring(number); }
std::wstring FormatIntHex(int32_t number) { return FormatHex(static_cast<uint32_t>(number)); }
std::wstring FormatInt64Hex(int64_t number) { return FormatHex(static_cast<uint64_t>(number)); }

double ParseDouble(const std::wstring& text) {
    double number = 0;
    if (!ParseWhole(AsciiOf(text), number) || !std::isfinite(number)) FailValue(text, L"a finite number");
    return number;
}

std::wstring FormatDouble(double number) {
    char digits[32];
    const auto result = std::to_chars(digits, std::end(digits), number);
    return WideOfAscii({digits, result.ptr});
}

int ParseBool(const std::wstring& text) {
    for (const BoolWord& row : kBoolWords)
        if (_wcsicmp(text.c_str(), row.word) == 0) return row.value;
    FailValue(text, L"true or false");
}

std::wstring FormatBool(int value) { return value ? L"true" : L"false"; }

POINT ParsePoint(const std::wstring& text) {
    const auto [x, y] = ParseTuple<2>(text, L"a point x,y");
    return {x, y};
}

std::wstring FormatPoint(POINT point) { return FormatTuple<2>({point.x, point.y}); }

RECT ParseRect(const std::wstring& text) {
    const auto [left, top, right, bottom] = ParseTuple<4>(text, L"a rectangle left,top,right,bottom");
    return {left, top, right, bottom};
}

std::wstring FormatRect(RECT rect) { return FormatTuple<4>({rect.left, rect.top, rect.right, rect.bottom}); }

RECT ParseRectLtwh(const std::wstring& text) {
    const auto [left, top, width, height] = ParseTuple<4>(text, L"a rectangle left,top,width,height");
    return {left, top, AddExtent(text, left, width), AddExtent(text, top, height)};
}

std::wstring FormatRectLtwh(RECT rect) {
    return FormatTuple<4>(
        {rect.left, rect.top, Extent(rect.left, rect.right), Extent(rect.top, rect.bottom)});
}

std::wstring FormatTime(const SYSTEMTIME& time) {
    wchar_t text[40];
    _snwprintf(text, std::size(text), L"%04u-%02u-%02uT%02u:%02u:%02u", time.wYear, time.wMonth, time.wDay,
               time.wHour, time.wMinute, time.wSecond);
    return text;
}

COLORREF ParseColor(const std::wstring& text) {
    constexpr wchar_t kType[] = L"a colour #rrggbb or red,green,blue";
    if (text.starts_with(L'#')) {
        uint32_t rgb = 0;
        if (text.size() != 7 || !ParseWhole(AsciiOf(text.substr(1)), rgb, 16)) FailValue(text, kType);
        return RGB(rgb >> 16 & 0xFF, rgb >> 8 & 0xFF, rgb & 0xFF);
    }
    const auto [red, green, blue] = ParseTuple<3>(text, kType);
    if ((red | green | blue) & ~0xFF) FailValue(text, kType);
    return RGB(red, green, blue);
}

std::wstring FormatColor(COLORREF color) {
    wchar_t text[16];
    _snwprintf(text, std::size(text), L"#%02x%02x%02x", GetRValue(color), GetGValue(color), GetBValue(color));
    return text;
}

} // namespace vlm
