// A record of the debug channel, taken apart.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace vlm {

// In ascending order. A line says it with its first words: "Error: ", "WRN: ", "HINT: ".
enum class Weight { kNone, kInfo, kHint, kWarning, kError };

// Takes "error", "warning", "hint" or "info". Throws a usage error.
Weight WeightNamed(const std::wstring& name);

struct TraceLine {
    enum class Kind {
        kLine,
        kBare, // a further record of a line that has line ends in it: only text
        kJoin,
        kLeave,
    };

    Kind kind = Kind::kBare;
    Weight weight = Weight::kNone;
    std::wstring whole; // the line as it came
    // Where its columns stand in it: module and time in front of the thread, text behind.
    size_t moduleEnd = 0;
    size_t threadBegin = 0;
    size_t threadEnd = 0;
    size_t textBegin = 0;
    DWORD thread = 0;
    int digit = -1; // counts the lines of a process

    std::wstring_view Text() const { return std::wstring_view(whole).substr(textBegin); }
};

// Bytes that are no UTF-8 are of the ANSI code page: an older library sends those.
TraceLine ParseTraceLine(const std::string& record);

// The path in the brackets of a join or leave line.
std::wstring ProcessPathOf(const TraceLine& line);

} // namespace vlm
