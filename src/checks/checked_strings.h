// The work of the exported string functions, and their form with tests of the parameters.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdint>

namespace vxut {

void TrimTextLeft(wchar_t* text) noexcept;  // blanks (U+0020) only
void TrimTextRight(wchar_t* text) noexcept; // the same

// Deletes units from a position that counts from 1. A text to insert raises an access violation before
// anything is changed.
wchar_t* StuffText(wchar_t* dest, uint32_t position, uint32_t deleteCount, const wchar_t* text) noexcept;

// Replaces a text by the part that begins at start, which counts from 1. Returns null, with the text empty,
// if start lies beyond the text. copy is CopyTextBounded() or its checked form.
wchar_t* CutText(wchar_t* text, int32_t start, uint32_t length,
                 wchar_t* (*copy)(wchar_t*, const wchar_t*, size_t)) noexcept;

// Returns the number of units written, or -1 if the text was truncated or the format is invalid.
int FormatText(wchar_t* dest, uint32_t capacity, const wchar_t* format, va_list arguments) noexcept;

// The functions while the parameter-check switch is on: each tests its pointers and then does the same work.
// A failed test is reported under the name of the export, and the function returns null or 0. A null pointer
// passes the tests and faults in the work.
namespace checked {

wchar_t* Strcpy(wchar_t* dest, const wchar_t* source) noexcept;
wchar_t* Strcat(wchar_t* dest, const wchar_t* source) noexcept;
wchar_t* Strncpy(wchar_t* dest, const wchar_t* source, size_t capacity) noexcept;
int Strcmp(const wchar_t* left, const wchar_t* right) noexcept;
int Stricmp(const wchar_t* left, const wchar_t* right) noexcept;
int Strncmp(const wchar_t* left, const wchar_t* right, uint32_t count) noexcept;
int Strnicmp(const wchar_t* left, const wchar_t* right, uint32_t count) noexcept;
const wchar_t* Strstr(const wchar_t* text, const wchar_t* wanted) noexcept;
const wchar_t* Strchr(const wchar_t* text, wchar_t unit) noexcept;
const wchar_t* Strrchr(const wchar_t* text, wchar_t unit) noexcept;
size_t Strlen(const wchar_t* text) noexcept;
void* Memcpy(void* dest, const void* source, uint32_t bytes) noexcept;
void* Memset(void* dest, int byte, uint32_t bytes) noexcept;
void Ltrim(wchar_t* text) noexcept;
void Rtrim(wchar_t* text) noexcept;
wchar_t* Stuff(wchar_t* dest, uint32_t position, uint32_t deleteCount, const wchar_t* text) noexcept;
wchar_t* Substr(wchar_t* text, int32_t start, uint32_t length) noexcept;
int SafeSprintf(wchar_t* dest, uint32_t capacity, const wchar_t* format, va_list arguments) noexcept;

} // namespace checked
} // namespace vxut
