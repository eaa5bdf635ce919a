// The types of values: how each is formatted as text, and how text is parsed.
//
// Writers and readers of one type do not agree in every detail. The differences are part of the data in
// existing profiles.
#pragma once

#include <windows.h>

#include <cstdint>
#include <tuple>

namespace vxut {

// A value as text. What does not fit is cut.
class clsValueText {
public:
    static constexpr uint32_t kCapacity = 200;

    template <class... Fields>
    explicit clsValueText(const wchar_t* format, Fields... fields) {
        Print(format, fields...);
    }
    const wchar_t* Text() const noexcept { return text_; }

private:
    void Print(const wchar_t* format, ...);

    wchar_t text_[kCapacity];
};

// The defaults of all types. kReadCapacity: a longer text is cut to fit, with its terminator, before it is
// parsed.
template <class T>
struct scValueType {
    using Value = T;
    static constexpr uint32_t kReadCapacity = clsValueText::kCapacity;
    static std::tuple<T> Fields(const T& value) { return value; }
};

// Each type has kAppend and kSet, the printf formats of its two writers for Fields(value), and Parse(), which
// returns false if the text is not a value of the type; out then holds the fields parsed before the fault.
struct scBoolType : scValueType<int32_t> {
    static constexpr const wchar_t* kAppend = L"%s";
    static constexpr const wchar_t* kSet = kAppend;
    static std::tuple<const wchar_t*> Fields(int32_t value) { return value ? L"TRUE" : L"FALSE"; }
    static bool Parse(const wchar_t* text, int32_t& out); // true for an upper-case "T" or "Y" in front
};

struct scDoubleType : scValueType<double> {
    static constexpr const wchar_t* kAppend = L"%f";
    static constexpr const wchar_t* kSet = L"%lf";
    static bool Parse(const wchar_t* text, double& out); // text that is not a number is 0
};

struct scIntType : scValueType<int32_t> {
    static constexpr const wchar_t* kAppend = L"%d";
    static constexpr const wchar_t* kSet = L"%d";
    // A text that ends before its number is accepted and leaves out unchanged: callers rely on it.
    static bool Parse(const wchar_t* text, int32_t& out);
};

struct scIntHexType : scIntType {
    static constexpr const wchar_t* kAppend = L"x%08X";
    static constexpr const wchar_t* kSet = L"x%x";
};

struct scInt64Type : scValueType<int64_t> {
    static constexpr uint32_t kReadCapacity = 64;
    static constexpr const wchar_t* kAppend = L"%I64u";
    static constexpr const wchar_t* kSet = L"%I64u";
    static bool Parse(const wchar_t* text, int64_t& out); // as for int
};

struct scInt64HexType : scInt64Type {
    static constexpr const wchar_t* kAppend = L"x%I64X";
    static constexpr const wchar_t* kSet = L"x%I64x";
};

struct scPointType : scValueType<POINT> {
    static constexpr const wchar_t* kAppend = L"(%d,%d)";
    static constexpr const wchar_t* kSet = kAppend;
    static std::tuple<LONG, LONG> Fields(const POINT& value) { return {value.x, value.y}; }
    static bool Parse(const wchar_t* text, POINT& out);
};

struct scRectType : scValueType<RECT> {
    static constexpr const wchar_t* kAppend = L"(%d,%d,%d,%d)";
    static constexpr const wchar_t* kSet = kAppend;
    static std::tuple<LONG, LONG, LONG, LONG> Fields(const RECT& value) {
        return {value.left, value.top, value.right, value.bottom};
    }
    static bool Parse(const wchar_t* text, RECT& out);
};

// Left, top, width and height.
struct scRectSizeType : scRectType {
    static std::tuple<LONG, LONG, LONG, LONG> Fields(const RECT& value);
    static bool Parse(const wchar_t* text, RECT& out);
};

struct scColorType : scValueType<COLORREF> {
    static constexpr const wchar_t* kAppend = L"(%d,%d,%d)";
    static constexpr const wchar_t* kSet = kAppend;
    static std::tuple<int, int, int> Fields(COLORREF value) {
        return {GetRValue(value), GetGValue(value), GetBValue(value)};
    }
    static bool Parse(const wchar_t* text, COLORREF& out); // hexadecimal digits are the raw value
};

// Formats a value in one of its type's formats.
template <class Type>
clsValueText FormatValue(const wchar_t* format, const typename Type::Value& value) {
    return std::apply([&](auto... fields) { return clsValueText(format, fields...); }, Type::Fields(value));
}

// Parsers of a caller's text, which may be null. They return false if the default is to be used, and accept
// less than those above.
bool ParseBoolText(const wchar_t* text, int32_t& out); // the empty text is true: callers rely on it
bool ParseIntText(const wchar_t* text, int32_t& out);  // no hexadecimal digits
bool ParseInt64Text(const wchar_t* text, int64_t& out);
bool ParseRectText(const wchar_t* text, RECT& out);
bool ParseColorText(const wchar_t* text, COLORREF& out);

} // namespace vxut
