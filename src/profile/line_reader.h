// Splits a profile file into lines, whatever its encoding.
#pragma once

#include "base/owners.h"
#include "base/unit_scan.h"
#include "encoding/charset.h"
#include "files/file.h"
#include "text/string.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace vxut {

// Reads the rest of a file in pieces and splits it into lines. The text ends at its first zero. Empty lines
// are skipped, leading blanks and TABs are removed, trailing ones stay; a line of blanks only is an empty
// line. As many bytes are read as the file had at the start, in whole units.
template <class Unit>
class clsLineBuffer {
public:
    enum Result { kLine, kEnd, kNeedsMore };

    // Nothing is read before the first Fill().
    explicit clsLineBuffer(clsFile& file);

    // The next line in the buffer, valid until the next Fill(); kNeedsMore if its end is not there yet.
    Result Next(std::basic_string_view<Unit>& line) noexcept;
    // Reads another piece behind what is left. Throws std::bad_alloc if a line is longer than memory allows.
    void Fill();
    // Reads to the end and forgets what it reads.
    void SkipRest();

    // True once the file could not be read to the end that its size promises. There are no lines then.
    bool HasFailed() const noexcept { return hasFailed_; }

private:
    void MakeSpace();
    void Fail() noexcept;

    clsFile& file_;
    size_t left_ = 0; // units of the file that are not read yet
    size_t capacity_ = 0;
    clsAutoDeleteBytes<Unit> units_;
    // The part that is not consumed. Behind it is a zero, with kUnitsPerScan units that can be read.
    const Unit* next_ = nullptr;
    Unit* end_ = nullptr;
    bool hasFailed_ = false;
};

// The lines of a file as wide text.
class clsProfLineReader {
public:
    // Both kinds of UTF-16 are read as little-endian: callers rely on big-endian files giving garbage. Throws
    // std::bad_alloc, as the other functions do.
    clsProfLineReader(clsFile& file, UtfType encoding);

    // The next line without consuming it; empty at the end.
    String FirstLine();
    // Consumes a line; returns false at the end. The text is valid until the next call.
    bool NextLine(std::wstring_view& line);
    // Consumes lines, as many as are at hand and at least one; returns their number, 0 at the end. The texts
    // are valid until the next call.
    size_t NextLines(std::span<std::wstring_view> lines);

    // Reads on to the end of the file. Returns false if any of the file could not be read.
    bool Finish();
    // True once a part of the file could not be read. There may have been lines before; there are none now.
    bool HasFailed() const noexcept { return wide_ ? wide_->HasFailed() : narrow_->HasFailed(); }

private:
    bool TakeLine(std::wstring_view& line);

    std::optional<clsLineBuffer<wchar_t>> wide_; // one of these two
    std::optional<clsLineBuffer<char>> narrow_;
    clsCharsetConversionStringCP converter_;
    std::wstring_view firstLine_;
    bool hasFirstLine_ = false; // it is the next one
};

// The lines of one load, counted as they are delivered.
class clsProfileInput {
public:
    explicit clsProfileInput(clsProfLineReader& reader) : reader_(reader) {}

    bool NextLine(std::wstring_view& line) {
        ++line_;
        return reader_.NextLine(line);
    }
    // See clsProfLineReader.
    size_t NextLines(std::span<std::wstring_view> lines) {
        const size_t count = reader_.NextLines(lines);
        line_ += static_cast<uint32_t>(count);
        return count;
    }
    uint32_t Line() const noexcept { return line_; }

private:
    clsProfLineReader& reader_;
    uint32_t line_ = 0;
};

} // namespace vxut
