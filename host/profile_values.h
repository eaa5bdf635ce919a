// The types in which the value of an item can be stored and read.
#pragma once

#include <prof.h>

#include <functional>
#include <span>
#include <string>

namespace vlm {

struct ItemPlace {
    HPROF job;
    const wchar_t* path;
};

struct ValueType {
    const wchar_t* name;
    const wchar_t* help;
    // Parses a text of the command line and returns a function that stores its value. Throws a usage error.
    std::function<std::function<void(const ItemPlace&)>(const std::wstring& text)> parse;
    // Reads an item's value as text; of a missing item the default, if there is one. Returns the library's
    // result code.
    std::function<int32_t(const ItemPlace& place, const std::wstring* defaultText, std::wstring& text)> read;
};

std::span<const ValueType> ValueTypes();
// The type of a name; string for null. Throws a usage error for an unknown name.
const ValueType& ValueTypeNamed(const std::wstring* name);

} // namespace vlm
