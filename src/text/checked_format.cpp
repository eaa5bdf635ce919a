#include "text/checked_format.h"

#include "base/shield.h"
#include "base/text_units.h"
#include "checks/validate.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <iterator>
#include <utility>

namespace vxut {
namespace {

constexpr int64_t kIntegerSize = 34;
constexpr int64_t kPointerSize = 18;
constexpr int64_t kFloatSize = 128;
constexpr int64_t kMostIntegralDigits = 309; // of a double written without an exponent
constexpr int64_t kDefaultPrecision = 6;
constexpr UINT_PTR kWholeString = 0x7FFFFFFF;

enum class Kind : uint8_t { kSigned, kUnsigned, kFloat, kPointer, kUnit, kText, kCountedText, kCounter };

struct Letter {
    wchar_t letter;
    Kind kind;
};

constexpr Letter kLetters[] = {
    {L'd', Kind::kSigned},   {L'i', Kind::kSigned},   {L'o', Kind::kUnsigned}, {L'u', Kind::kUnsigned},
    {L'x', Kind::kUnsigned}, {L'X', Kind::kUnsigned}, {L'a', Kind::kFloat},    {L'A', Kind::kFloat},
    {L'e', Kind::kFloat},    {L'E', Kind::kFloat},    {L'f', Kind::kFloat},    {L'F', Kind::kFloat},
    {L'g', Kind::kFloat},    {L'G', Kind::kFloat},    {L'p', Kind::kPointer},  {L'c', Kind::kUnit},
    {L'C', Kind::kUnit},     {L's', Kind::kText},     {L'S', Kind::kText},     {L'Z', Kind::kCountedText},
    {L'n', Kind::kCounter},
};

// How wide the units of a text or of a single unit are; the letter decides by default.
enum class Width : uint8_t { kByLetter, kNarrow, kWide };

struct SizePrefix {
    const wchar_t* text;
    uint8_t bytes; // of an integer; 0: the prefix does not say
    Width width;
};

// A prefix that begins with another one precedes it. F and N are relics without a meaning.
constexpr SizePrefix kSizePrefixes[] = {
    {L"I64", 8, Width::kByLetter},
    {L"I32", 4, Width::kByLetter},
    {L"I", sizeof(void*), Width::kByLetter},
    {L"ll", 8, Width::kWide},
    {L"l", 4, Width::kWide},
    {L"hh", 1, Width::kNarrow},
    {L"h", 2, Width::kNarrow},
    {L"w", 0, Width::kWide},
    {L"j", 8, Width::kByLetter},
    {L"z", sizeof(void*), Width::kByLetter},
    {L"t", sizeof(void*), Width::kByLetter},
    {L"L", 0, Width::kByLetter},
    {L"F", 0, Width::kByLetter},
    {L"N", 0, Width::kByLetter},
};

constexpr wchar_t kFlags[] = L" +-0#";
constexpr wchar_t kDigitFlags[] = L" +#"; // those of an integer without width and precision

constexpr size_t kFlagCount = std::size(kFlags) - 1;

// Returns the position of a flag among the flags; kFlagCount for any other unit.
constexpr size_t FlagIndex(wchar_t unit) {
    size_t index = 0;
    while (index < kFlagCount && kFlags[index] != unit) ++index;
    return index;
}

const Letter* FindLetter(wchar_t unit) {
    const auto* const found = std::find_if(std::begin(kLetters), std::end(kLetters),
                                           [=](const Letter& row) { return row.letter == unit; });
    return found != std::end(kLetters) ? found : nullptr;
}

const SizePrefix* FindSizePrefix(const wchar_t* text) {
    for (const SizePrefix& row : kSizePrefixes)
        if (*text == *row.text && std::wcsncmp(text, row.text, std::wcslen(row.text)) == 0) return &row;
    return nullptr;
}

// One conversion with its argument. The CRT of the process may know fewer conversions than this table and
// then leave arguments where they are. Therefore each is handed to it by itself and in the plainest spelling.
struct Conversion {
    bool hasFlag[kFlagCount] = {};
    int64_t width = 0;
    int64_t precision = -1; // none
    uint8_t bytes = 0;
    Width unitWidth = Width::kByLetter;
    wchar_t letter = 0;
    Kind kind = Kind::kSigned;
    union {
        int64_t integer;
        double number;
        const void* pointer;
    };

    bool Has(wchar_t flag) const noexcept { return hasFlag[FlagIndex(flag)]; }
    bool IsNarrow() const noexcept {
        const bool isCapital = letter == L'S' || letter == L'C' || letter == L'Z';
        return unitWidth == Width::kNarrow || (isCapital && unitWidth == Width::kByLetter);
    }
};

// Splits a format into literal units and conversions, and takes their arguments.
class FormatReader {
public:
    FormatReader(const wchar_t* format, va_list arguments) : next_(format) { va_copy(arguments_, arguments); }
    ~FormatReader() { va_end(arguments_); }
    FormatReader(const FormatReader&) = delete;
    FormatReader& operator=(const FormatReader&) = delete;

    // Returns false if the visitor refuses a conversion, or if one that is unknown takes arguments.
    template <class Visitor>
    bool Visit(Visitor& visitor) {
        while (*next_) {
            const wchar_t* const start = next_;
            while (*next_ && *next_ != L'%') ++next_;
            visitor.AddLiteral(start, next_ - start);
            if (*next_ == 0) break;
            ++next_;
            Conversion conversion;
            const bool takesNumbers = ReadOptions(conversion);
            if (*next_ == 0) break;
            const Letter* const found = FindLetter(*next_++);
            if (found == nullptr) {
                if (takesNumbers) return false;
                visitor.AddLiteral(next_ - 1, 1); // as of "%%"
                continue;
            }
            conversion.letter = found->letter;
            conversion.kind = found->kind;
            TakeArgument(conversion);
            if (!visitor.AddConversion(conversion)) return false;
        }
        return true;
    }

private:
    // Returns whether the width or the precision is an argument.
    bool ReadOptions(Conversion& conversion) {
        bool takesNumbers = false;
        for (size_t flag; (flag = FlagIndex(*next_)) < kFlagCount; ++next_) conversion.hasFlag[flag] = true;
        conversion.width = ReadNumber(takesNumbers);
        if (conversion.width < 0) {
            conversion.hasFlag[FlagIndex(L'-')] = true;
            conversion.width = -conversion.width;
        }
        if (*next_ == L'.') {
            ++next_;
            conversion.precision = std::max<int64_t>(ReadNumber(takesNumbers), -1);
        }
        ReadSizePrefixes(conversion);
        return takesNumbers;
    }

    int64_t ReadNumber(bool& takesNumbers) {
        if (*next_ == L'*') {
            ++next_;
            takesNumbers = true;
            return va_arg(arguments_, int);
        }
        int64_t number = 0;
        for (; *next_ >= L'0' && *next_ <= L'9'; ++next_)
            number = std::min(number * 10 + (*next_ - L'0'), kMostFormatPadding + 1);
        return number;
    }

    void ReadSizePrefixes(Conversion& conversion) {
        while (const SizePrefix* const prefix = FindSizePrefix(next_)) {
            const wchar_t* const behind = next_ + std::wcslen(prefix->text);
            // F is a letter as well: it is a prefix only if a letter or a prefix follows.
            if (*next_ == L'F' && !FindLetter(*behind) && !FindSizePrefix(behind)) return;
            next_ = behind;
            if (prefix->bytes) conversion.bytes = prefix->bytes;
            if (prefix->width != Width::kByLetter) conversion.unitWidth = prefix->width;
        }
    }

    void TakeArgument(Conversion& conversion) {
        switch (conversion.kind) {
            case Kind::kSigned:
            case Kind::kUnsigned:
                conversion.integer =
                    conversion.bytes == 8 ? va_arg(arguments_, int64_t) : va_arg(arguments_, int);
                Truncate(conversion);
                break;
            case Kind::kFloat:
                conversion.number = va_arg(arguments_, double);
                break;
            case Kind::kUnit:
                conversion.integer = va_arg(arguments_, int);
                break;
            default:
                conversion.pointer = va_arg(arguments_, const void*);
        }
    }

    // Cuts the argument to its size and makes 64 bits of it again.
    static void Truncate(Conversion& conversion) noexcept {
        const int shift = 64 - 8 * (conversion.bytes ? conversion.bytes : 4);
        const uint64_t top = static_cast<uint64_t>(conversion.integer) << shift;
        conversion.integer = conversion.kind == Kind::kSigned ? static_cast<int64_t>(top) >> shift
                                                              : static_cast<int64_t>(top >> shift);
    }

    const wchar_t* next_;
    va_list arguments_;
};

// A text with a length in bytes, as the system's own interfaces use it.
struct CountedText {
    USHORT bytes;
    USHORT capacity;
    const void* text;
};

// Sums up what the pieces may need, and probes the pointers among the arguments.
class Measurer {
public:
    int64_t Size() const noexcept { return size_; }

    void AddLiteral(const wchar_t* /*text*/, int64_t count) noexcept { size_ += 2 * count; }

    bool AddConversion(const Conversion& conversion) {
        padding_ += conversion.width + std::max<int64_t>(conversion.precision, 0);
        if (padding_ > kMostFormatPadding) return false;
        const int64_t size = SizeOf(conversion);
        size_ += size + (conversion.Has(L'#') ? 2 : 0);
        return size >= 0;
    }

private:
    // Returns -1 if the argument is bad.
    static int64_t SizeOf(const Conversion& conversion) {
        const int64_t width = conversion.width;
        const int64_t precision = std::max<int64_t>(conversion.precision, 0);
        switch (conversion.kind) {
            case Kind::kSigned:
            case Kind::kUnsigned:
                return std::max({width, kIntegerSize, precision + 3});
            case Kind::kFloat:
                return std::max(width + std::max(precision, kDefaultPrecision) + 2 + kMostIntegralDigits,
                                kFloatSize) +
                       10;
            case Kind::kPointer:
                return std::max({width, kPointerSize, precision + 3});
            case Kind::kUnit:
                return std::max<int64_t>(width, 2);
            case Kind::kText:
                return SizeOfText(conversion);
            case Kind::kCountedText:
                return SizeOfCountedText(conversion);
            default:
                return IsCounterGood(conversion) ? 0 : -1;
        }
    }

    static int64_t SizeOfText(const Conversion& conversion) {
        if (conversion.pointer == nullptr || !IsReadable(conversion)) return -1;
        const size_t length = conversion.IsNarrow()
                                  ? std::strlen(static_cast<const char*>(conversion.pointer))
                                  : UnitLength(static_cast<const wchar_t*>(conversion.pointer));
        auto size = std::max<int64_t>(static_cast<int64_t>(length), 1);
        if (conversion.precision >= 0) size = std::min(size, conversion.precision);
        return std::max(size, conversion.width);
    }

    // The explicit wide form is probed even while a debugger is attached.
    static bool IsReadable(const Conversion& conversion) {
        if (conversion.IsNarrow())
            return ProbeStringA(static_cast<const char*>(conversion.pointer), kWholeString);
        const auto* wide = static_cast<const wchar_t*>(conversion.pointer);
        return conversion.unitWidth == Width::kWide ? !IsBadStringPtrW(wide, kWholeString)
                                                    : ProbeStringW(wide, kWholeString);
    }

    static int64_t SizeOfCountedText(const Conversion& conversion) {
        const auto* const counted = static_cast<const CountedText*>(conversion.pointer);
        if (counted == nullptr || !ProbeRead(counted, sizeof *counted)) return -1;
        if (counted->text == nullptr || !ProbeRead(counted->text, counted->bytes)) return -1;
        return std::max<int64_t>(counted->bytes, conversion.width);
    }

    static bool IsCounterGood(const Conversion& conversion) {
        void* const counter = const_cast<void*>(conversion.pointer);
        return counter && ProbeWrite(counter, std::max<size_t>(conversion.bytes, sizeof(int)));
    }

    int64_t size_ = 0;
    int64_t padding_ = 0;
};

// Writes the pieces and cuts what does not fit.
class Writer {
public:
    Writer(wchar_t* target, int64_t capacity) noexcept : target_(target), most_(capacity - 1) {}

    int64_t Finish() noexcept {
        target_[length_] = L'\0';
        return length_;
    }

    void AddLiteral(const wchar_t* text, int64_t count) {
        count = std::min(count, most_ - length_);
        std::wmemcpy(target_ + length_, text, static_cast<size_t>(count));
        length_ += count;
    }

    bool AddConversion(const Conversion& conversion) {
        const int64_t precision = conversion.precision;
        switch (conversion.kind) {
            case Kind::kPointer:
                return AddInteger(conversion, L"", L'p', conversion.pointer);
            case Kind::kFloat:
                return AddByCrt(conversion, precision, L"",
                                conversion.letter == L'F' ? L'f' : conversion.letter, conversion.number);
            case Kind::kUnit:
                return AddByCrt(conversion, -1, conversion.IsNarrow() ? L"h" : L"l", L'c',
                                static_cast<int>(conversion.integer));
            case Kind::kText:
                return AddText(conversion, conversion.pointer, precision);
            case Kind::kCountedText:
                return AddCountedText(conversion);
            case Kind::kCounter:
                StoreLength(conversion);
                return true;
            default:
                return AddInteger(conversion, L"I64", conversion.letter, conversion.integer);
        }
    }

private:
    // Builds the spelling of a conversion: flags, width and precision, if there are any, prefix and letter.
    class Spelling {
    public:
        Spelling(const Conversion& conversion, const wchar_t* flags) noexcept {
            *end_++ = L'%';
            for (; *flags; ++flags)
                if (conversion.Has(*flags)) *end_++ = *flags;
        }
        void AddNumber(const wchar_t* before, int64_t number) noexcept {
            end_ += _snwprintf(end_, kMostNumberUnits, L"%ls%d", before, static_cast<int>(number));
        }
        const wchar_t* Finish(const wchar_t* prefix, wchar_t letter) noexcept {
            while (*prefix) *end_++ = *prefix++;
            *end_++ = letter;
            *end_ = L'\0';
            return text_;
        }

    private:
        static constexpr size_t kMostNumberUnits = 9; // a point, seven digits and a terminator
        wchar_t text_[32];
        wchar_t* end_ = text_;
    };

    template <class Value>
    bool AddByCrt(const Conversion& conversion, int64_t precision, const wchar_t* prefix, wchar_t letter,
                  Value value) {
        Spelling spelling(conversion, kFlags);
        if (conversion.width > 0) spelling.AddNumber(L"", conversion.width);
        if (precision >= 0) spelling.AddNumber(L".", precision);
        const auto most = static_cast<size_t>(most_ - length_);
        const int count = _snwprintf(target_ + length_, most, spelling.Finish(prefix, letter), value);
        if (count < 0) return false;
        length_ += count;
        return true;
    }

    // Width and precision are done here: the CRT of some systems writes past a buffer of its own for long
    // ones of integers.
    template <class Value>
    bool AddInteger(const Conversion& conversion, const wchar_t* prefix, wchar_t letter, Value value) {
        wchar_t text[32];
        int64_t length = _snwprintf(text, std::size(text),
                                    Spelling(conversion, kDigitFlags).Finish(prefix, letter), value);
        if (length < 0) return false;
        const bool isHexadecimal = (letter == L'x' || letter == L'X') && conversion.Has(L'#') && length > 2;
        const int64_t lead = isHexadecimal ? 2 : std::wcschr(L" +-", text[0]) ? 1 : 0;
        const bool keepsZero = letter == L'p' || (letter == L'o' && conversion.Has(L'#'));
        if (conversion.precision == 0 && !keepsZero && conversion.integer == 0) length = lead;
        int64_t zeros = std::max<int64_t>(conversion.precision - (length - lead), 0);
        int64_t blanks = std::max<int64_t>(conversion.width - length - zeros, 0);
        if (conversion.Has(L'0') && !conversion.Has(L'-') && conversion.precision < 0)
            zeros += std::exchange(blanks, 0);
        if (!conversion.Has(L'-')) AddRepeated(L' ', std::exchange(blanks, 0));
        AddLiteral(text, lead);
        AddRepeated(L'0', zeros);
        AddLiteral(text + lead, length - lead);
        AddRepeated(L' ', blanks);
        return true;
    }

    void AddRepeated(wchar_t unit, int64_t count) noexcept {
        count = std::min(count, most_ - length_);
        std::wmemset(target_ + length_, unit, static_cast<size_t>(count));
        length_ += count;
    }

    bool AddText(const Conversion& conversion, const void* text, int64_t precision) {
        if (conversion.IsNarrow()) return AddByCrt(conversion, precision, L"h", L's', text);
        const auto* const wide = static_cast<const wchar_t*>(text);
        const auto length = static_cast<int64_t>(UnitLength(wide, static_cast<size_t>(precision)));
        const int64_t padding = std::max<int64_t>(conversion.width - length, 0);
        if (!conversion.Has(L'-')) AddRepeated(conversion.Has(L'0') ? L'0' : L' ', padding);
        AddLiteral(wide, length);
        if (conversion.Has(L'-')) AddRepeated(L' ', padding);
        return true;
    }

    bool AddCountedText(const Conversion& conversion) {
        const auto* const counted = static_cast<const CountedText*>(conversion.pointer);
        const bool isNarrow = conversion.IsNarrow();
        int64_t precision = isNarrow ? counted->bytes : counted->bytes / 2;
        if (conversion.precision >= 0) precision = std::min(precision, conversion.precision);
        return AddText(conversion, counted->text, precision);
    }

    void StoreLength(const Conversion& conversion) {
        const size_t bytes = conversion.bytes ? conversion.bytes : sizeof(int);
        std::memcpy(const_cast<void*>(conversion.pointer), &length_, bytes);
    }

    wchar_t* target_;
    int64_t most_;
    int64_t length_ = 0;
};

// Returns what work() returns; -1 at a fault. Probing cannot exclude one: another thread may free a text in
// between. What runs in there is not noexcept, which would put the C++ run-time's handler before the shield.
template <class Work>
int64_t ResultOf(Work work) {
    int64_t result = -1;
    return Shielded([&] { result = work(); }) ? result : -1;
}

} // namespace

int64_t MeasureFormat(const wchar_t* format, va_list arguments) {
    if (format == nullptr) return -1;
    return ResultOf([=]() -> int64_t {
        Measurer measurer;
        return FormatReader(format, arguments).Visit(measurer) ? measurer.Size() : -1;
    });
}

int64_t WriteFormat(wchar_t* target, int64_t capacity, const wchar_t* format, va_list arguments) {
    return ResultOf([=]() -> int64_t {
        Writer writer(target, capacity);
        return FormatReader(format, arguments).Visit(writer) ? writer.Finish() : -1;
    });
}

} // namespace vxut
