// Text between its wide and byte forms, and made fit for reading.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace vlm {

std::string BytesOf(std::wstring_view text, UINT codePage);
// Bytes that the code page does not have become its replacement character.
std::wstring WideOf(std::string_view bytes, UINT codePage);
bool IsStrictUtf8(std::string_view bytes);

// The text with pictures or escapes in place of control characters, direction marks and other characters that
// cannot be seen.
std::wstring Visible(std::wstring_view text);

// The code page of "1252", "cp1252", "windows-1252", "utf-8", "ansi", "oem". Throws a usage error.
UINT CodePageNamed(const std::wstring& name);

// What the system says of an error number, without the line end.
std::wstring SystemMessage(DWORD error);

} // namespace vlm
