// The codes that cars bear abroad (D for Germany), past ones included, each with the name of its country or
// territory.
#pragma once

#include "text/string.h"

#include <span>

namespace vxut {

// Texts are Latin-1.
struct scCarCode {
    const char* code;
    const char* name;
};

// Sorted by code without regard to case.
std::span<const scCarCode> CarCodeTable();

// A text of the table.
inline String Latin(const char* text) {
    return clsCHARString(text, static_cast<int64_t>(std::char_traits<char>::length(text))).ToString(0);
}

} // namespace vxut
