// Splits a profile file into lines, whatever its encoding.
#pragma once

#include "base/owners.h"
#include "encoding/charset.h"
#include "files/file.h"
#include "text/string.h"

#include <cstdint>
#include <string_view>

namespace vxut {

// Splits zero-terminated text, which must outlive the cursor, into lines. Empty lines are skipped, leading
// blanks and TABs are removed, trailing ones stay; a line of blanks only is an empty line.
template <class Unit>
class clsLineCursor {
public:
    explicit clsLineCursor(const Unit* text = nullptr) noexcept : next_(text) {}

    // The next line, or false at the end.
    bool Next(std::basic_string_view<Unit>& line) noexcept {
        while (IsLineEnd(*next_)) ++next_;
        if (*next_ == 0) return false;
        while (*next_ == ' ' || *next_ == '\t') ++next_;
        if (*next_ == 0) return false;
        const Unit* const start = next_;
        while (*next_ != 0 && !IsLineEnd(*next_)) ++next_;
        line = {start, static_cast<size_t>(next_ - start)};
        if (*next_ != 0) ++next_;
        return true;
    }

private:
    static bool IsLineEnd(Unit unit) noexcept { return unit == '\r' || unit == '\n'; }

    const Unit* next_;
};

// Reads the rest of a file at once. Throws if there is no memory for it.
class clsProfLineReader {
public:
    // Both kinds of UTF-16 are read as little-endian: callers rely on big-endian files giving garbage.
    clsProfLineReader(clsFile& file, UtfType encoding);

    // False if the file could not be read to the end that its size promises. There are no lines then.
    bool IsComplete() const noexcept { return isComplete_; }

    // The next line without consuming it; empty at the end.
    String FirstLine();
    // Consumes a line; returns false at the end. The text is valid until the next call.
    bool NextLine(std::wstring_view& line);

private:
    bool IsWide() const noexcept { return encoding_ == kUtf16LittleEndian || encoding_ == kUtf16BigEndian; }
    std::wstring_view Widen(std::string_view line);
    bool TakeLine(clsLineCursor<wchar_t>& wide, clsLineCursor<char>& narrow, std::wstring_view& line);

    template <class Unit>
    clsAutoDeleteBytes<Unit> ReadRest(clsFile& file);

    const UtfType encoding_;
    bool isComplete_ = false;
    clsAutoDeleteBytes<wchar_t> wide_;
    clsAutoDeleteBytes<char> narrow_;
    clsLineCursor<wchar_t> wideCursor_;
    clsLineCursor<char> narrowCursor_;
    clsCharsetConversionStringCP converter_;
};

// The lines of one load, counted as they are delivered.
class clsProfileInput {
public:
    explicit clsProfileInput(clsProfLineReader& reader) : reader_(reader) {}

    bool NextLine(std::wstring_view& line) {
        ++line_;
        return reader_.NextLine(line);
    }
    uint32_t Line() const noexcept { return line_; }

private:
    clsProfLineReader& reader_;
    uint32_t line_ = 0;
};

} // namespace vxut
