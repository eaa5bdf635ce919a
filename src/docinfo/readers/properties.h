// What the readers of all formats share: texts and times as properties of a document, and bytes of its file.
//
// Threads: no shared state.
#pragma once

#include "docinfo/document.h"
#include "text/string.h"
#include "variant/variant.h"

#include <windows.h>

#include <cstdint>
#include <span>
#include <vector>

namespace vxut {

// Stores a text. Throws std::bad_alloc.
void SetText(clsVariant& property, const String& text);

// The text of a property; empty if it has none.
String TextOf(const clsVariant& property);

// Whether no reader has stored a value.
bool IsUnset(const clsVariant& property);

// Appends a text to that of a property, with the separator if there was one. Throws std::bad_alloc.
void AppendText(clsVariant& property, const wchar_t* separator, const String& text);

// Converts bytes, up to the first zero, from the default code page. Empty if the system cannot convert them.
// Throws std::bad_alloc.
String AnsiText(std::span<const uint8_t> bytes);

// Reads up to count bytes at an offset. Returns how many there were, 0 if the file cannot be read.
size_t ReadSome(clsFile& file, int64_t offset, void* buffer, size_t count);

// Reads exactly count bytes at an offset. Returns false if there are fewer or the file cannot be read.
inline bool ReadAll(clsFile& file, int64_t offset, void* buffer, size_t count) {
    return ReadSome(file, offset, buffer, count) == count;
}

// The same into a vector of that size. Throws std::bad_alloc: count must be bounded by what the file holds.
bool ReadAll(clsFile& file, int64_t offset, std::vector<uint8_t>& bytes, size_t count);

} // namespace vxut
