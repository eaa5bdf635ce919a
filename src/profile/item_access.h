// Items by path, as text and as typed values.
#pragma once

#include "prof/codes.h"
#include "profile/item_path.h"
#include "profile/typed_values.h"

#include <cstdint>

namespace vxut {

// Adds an item at the end of its list, even beside one of the same name. A null path is an empty name, a null
// value does nothing.
void AppendText(const scPlace& place, const wchar_t* path, const wchar_t* value);

// Replaces the value of the first plain item of the name, or adds one. A null does nothing.
void SetText(const scPlace& place, const wchar_t* path, const wchar_t* value);

// Copies an item's value to a buffer of capacity units, cut and terminated: the default if item is null. A
// null default is the empty text; one that stands in the buffer already stays there. Gives the units copied
// of the value, or PROF_ERR_NOT_FOUND.
int32_t ReadText(const clsItem* item, wchar_t* buffer, uint32_t capacity, const wchar_t* fallback);
// The same in the default code page. The result is the wide form's, and the last byte of the buffer becomes
// 0.
int32_t ReadText(const clsItem* item, char* buffer, uint32_t capacity, const char* fallback);

// The value's length in units, or PROF_ERR_NOT_FOUND.
int32_t TextLength(const clsItem* item);

// Parses an item's value; out gets the default if item is null or its value empty.
template <class Type>
int32_t ReadValue(const clsItem* item, typename Type::Value& out, const typename Type::Value& fallback) {
    if (!item || item->Value().empty()) {
        out = fallback;
        return PROF_ERR_NOT_FOUND;
    }
    wchar_t text[Type::kReadCapacity];
    text[item->Value().copy(text, Type::kReadCapacity - 1)] = 0;
    return Type::Parse(text, out) ? PROF_OK : PROF_ERR_VALUE;
}

} // namespace vxut
