// The parts of a line of the debug channel.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace vlm {

// In ascending order. The first words of a line express it: "Error: ", "WRN: ", "HINT: ".
enum class Weight { kNone, kInfo, kHint, kWarning, kError };

// The weight called "error", "warning", "hint" or "info". Throws a usage error for other names.
Weight WeightNamed(const std::wstring& name);

struct TraceLine {
    enum class Kind {
        kLine,
        kBare, // no columns: the continuation of a line that contains line ends
        kJoin,
        kLeave,
    };

    Kind kind = Kind::kBare;
    Weight weight = Weight::kNone;
    std::wstring whole; // the line as received
    // Positions of its columns, which are module, time, thread, digit and text.
    size_t moduleEnd = 0;
    size_t threadBegin = 0;
    size_t threadEnd = 0;
    size_t textBegin = 0;
    DWORD thread = 0;
    int digit = -1; // the last digit of the process's line count

    std::wstring_view Text() const { return std::wstring_view(whole).substr(textBegin); }
};

// Bytes that are not valid UTF-8 are taken as text in the ANSI code page, which older libraries send.
TraceLine ParseTraceLine(const std::string& record);

// The path in the brackets of a join or leave line.
std::wstring ProcessPathOf(const TraceLine& line);

} // namespace vlm
