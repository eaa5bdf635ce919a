// Conversion between wide text and bytes, and text made safe to display.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace vlm {

std::string BytesOf(std::wstring_view text, UINT codePage);
// Bytes that are invalid in the code page become its replacement character.
std::wstring WideOf(std::string_view bytes, UINT codePage);
bool IsStrictUtf8(std::string_view bytes);

// The text with pictures or escapes in place of control characters, direction marks and other characters that
// cannot be seen.
std::wstring Visible(std::wstring_view text);

// The code page of a name such as "1252", "cp1252", "windows-1252", "utf-8", "ansi" or "oem". Throws a usage
// error for an unknown one.
UINT CodePageNamed(const std::wstring& name);

// The system's message for an error code, without full stop and line end.
std::wstring SystemMessage(DWORD error);

} // namespace vlm
