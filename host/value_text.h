// Typed values as text on the command line. The parsers throw a usage error if the text is not a value of the
// type.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

namespace vlm {

// Decimal digits, or hexadecimal digits of the bit pattern after "x" or "0x".
int32_t ParseInt(const std::wstring& text);
int64_t ParseInt64(const std::wstring& text);
std::wstring FormatInt(int32_t number);
std::wstring FormatInt64(int64_t number);
std::wstring FormatIntHex(int32_t number);
std::wstring FormatInt64Hex(int64_t number);

double ParseDouble(const std::wstring& text);
// The shortest text that parses to the same number.
std::wstring FormatDouble(double number);

// true, yes, on, 1 and false, no, off, 0, in any case.
int ParseBool(const std::wstring& text);
std::wstring FormatBool(int value);

// Numbers joined by commas, with or without round brackets.
POINT ParsePoint(const std::wstring& text);
std::wstring FormatPoint(POINT point);
RECT ParseRect(const std::wstring& text);
std::wstring FormatRect(RECT rect);
// A rectangle as left, top, width and height.
RECT ParseRectLtwh(const std::wstring& text);
std::wstring FormatRectLtwh(RECT rect);

// A date and time in the form of ISO 8601: 2026-11-13T16:30:00.
std::wstring FormatTime(const SYSTEMTIME& time);

// #rrggbb, or red, green and blue joined by commas.
COLORREF ParseColor(const std::wstring& text);
std::wstring FormatColor(COLORREF color);

} // namespace vlm
