// Takes a format of Microsoft's printf apart.
#pragma once

#include <algorithm>
#include <cstdarg>
#include <cstdint>

namespace vxut {

// Widths and precisions of a format may add this many units in all.
constexpr int64_t kMostFormatPadding = int64_t{1} << 20;

enum FormatFlag : uint8_t {
    kFormatBlank = 1,
    kFormatPlus = 2,
    kFormatMinus = 4,
    kFormatZero = 8,
    kFormatHash = 16,
};

struct scFormatFlag {
    wchar_t unit;
    FormatFlag flag;
};

inline constexpr scFormatFlag kFormatFlags[] = {
    {L' ', kFormatBlank}, {L'+', kFormatPlus}, {L'-', kFormatMinus}, {L'0', kFormatZero}, {L'#', kFormatHash},
};

enum class FormatKind : uint8_t {
    kNone,
    kSigned,
    kUnsigned,
    kFloat,
    kPointer,
    kUnit,
    kText,
    kCountedText,
    kCounter
};

// How wide the units of a text or of a single unit are; the letter decides by default.
enum class FormatUnits : uint8_t { kByLetter, kNarrow, kWide };

// One conversion with its argument.
struct scFormatConversion {
    union {
        int64_t integer = 0; // extended from its size to 64 bits
        double number;
        const void* pointer;
    };
    int64_t width = 0;
    int64_t precision = -1; // none
    uint8_t flags = 0;      // FormatFlag
    uint8_t bytes = 0;      // of an integer; 0: the format does not say
    FormatUnits units = FormatUnits::kByLetter;
    FormatKind kind = FormatKind::kNone;
    wchar_t letter = 0;

    bool Has(FormatFlag flag) const noexcept { return flags & flag; }
    bool IsNarrow() const noexcept {
        const bool isCapital = letter == L'S' || letter == L'C' || letter == L'Z';
        return units == FormatUnits::kNarrow || (isCapital && units == FormatUnits::kByLetter);
    }
};

// Reads a format once, and its arguments with it. Neither is copied: both outlive the reader, and reading
// them may raise a fault.
class clsFormatReader {
public:
    clsFormatReader(const wchar_t* format, va_list arguments) noexcept : next_(format) {
        va_copy(arguments_, arguments);
    }
    ~clsFormatReader() { va_end(arguments_); }
    clsFormatReader(const clsFormatReader&) = delete;
    clsFormatReader& operator=(const clsFormatReader&) = delete;

    // Passes the literal units and the conversions in their order to visitor.AddLiteral(text, count) and
    // visitor.AddConversion(conversion). Returns false if the visitor refuses a conversion, or if one that is
    // unknown takes arguments.
    template <class Visitor>
    bool Visit(Visitor& visitor) {
        while (*next_) {
            const wchar_t* const start = next_;
            while (*next_ && *next_ != L'%') ++next_;
            if (next_ != start) visitor.AddLiteral(start, next_ - start);
            if (*next_ == 0) break;
            ++next_;
            scFormatConversion conversion;
            const bool takesNumbers = ReadOptions(conversion);
            if (*next_ == 0) break;
            if (ReadLetter(conversion)) {
                if (!visitor.AddConversion(conversion)) return false;
            } else {
                if (takesNumbers) return false;
                visitor.AddLiteral(next_ - 1, 1); // as of "%%"
            }
        }
        return true;
    }

private:
    // Returns whether the width or the precision is an argument.
    bool ReadOptions(scFormatConversion& conversion);
    // Returns false for an unknown letter.
    bool ReadLetter(scFormatConversion& conversion);
    int64_t ReadNumber(bool& takesNumbers);
    void ReadSizePrefixes(scFormatConversion& conversion);
    void TakeArgument(scFormatConversion& conversion);

    const wchar_t* next_;
    va_list arguments_;
};

} // namespace vxut
