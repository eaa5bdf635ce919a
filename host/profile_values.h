// The types that the value of an item can be written and read as.
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
    // Parses a text from the command line and gives what stores its value. Throws a usage error.
    std::function<std::function<void(const ItemPlace&)>(const std::wstring& text)> parse;
    // Reads an item's value as text; a missing item gives the default, if there is one. Gives the library's
    // result code.
    std::function<int32_t(const ItemPlace& place, const std::wstring* defaultText, std::wstring& text)> read;
};

std::span<const ValueType> ValueTypes();
// Null stands for a string. Throws a usage error for an unknown name.
const ValueType& ValueTypeNamed(const std::wstring* name);

} // namespace vlm
