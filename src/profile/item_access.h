// Items by path, as text and as typed values.
#pragma once

#include "prof/codes.h"
#include "profile/item_path.h"
#include "profile/typed_values.h"

#include <cstdint>

namespace vxut {

// The writers throw std::bad_alloc, and have then changed nothing.

// Adds an item at the end of its list, even if the list contains one of that name. A null path is an empty
// name; a null value does nothing.
void AppendText(const scPlace& place, const wchar_t* path, const wchar_t* value);

// Replaces the value of the first plain item of the name, or adds one. A null does nothing.
void SetText(const scPlace& place, const wchar_t* path, const wchar_t* value);

// Copies an item's value to a buffer of capacity units, cut and terminated, or the default if item is null.
// A null default is the empty text; one that is the buffer itself is left as it is. A null buffer or a
// capacity of 0 writes nothing. Returns the number of units copied of the value, or PROF_ERR_NOT_FOUND.
int32_t ReadText(const clsItem* item, wchar_t* buffer, uint32_t capacity, const wchar_t* fallback);
// The same in the default code page, capacity in bytes. Returns the wide form's result and sets the last byte
// of the buffer to 0. Throws std::bad_alloc.
int32_t ReadText(const clsItem* item, char* buffer, uint32_t capacity, const char* fallback);

// The value's length in units, or PROF_ERR_NOT_FOUND.
int32_t TextLength(const clsItem* item);

// Parses an item's value as a value of Type, see typed_values.h. Returns PROF_OK; PROF_ERR_NOT_FOUND, with
// the default in out, if item is null or its value is empty; PROF_ERR_VALUE if the text is not a value.
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
