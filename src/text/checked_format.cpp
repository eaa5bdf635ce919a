#include "text/checked_format.h"

#include "base/shield.h"
#include "base/text_units.h"
#include "checks/validate.h"
#include "containers/list.h"
#include "text/append_or_throw.h"
#include "text/format_reader.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <iterator>
#include <utility>

namespace vxut {
namespace {

constexpr int64_t kFloatSize = 128;
constexpr int64_t kMostIntegralDigits = 309; // of a double written without an exponent
constexpr int64_t kDefaultPrecision = 6;
constexpr int64_t kPointerDigits = 2 * sizeof(void*);

constexpr wchar_t kLowerDigits[] = L"0123456789abcdef";
constexpr wchar_t kUpperDigits[] = L"0123456789ABCDEF";

// A text with a length in bytes, as the system's own interfaces use it.
struct CountedText {
    USHORT bytes;
    USHORT capacity;
    const void* text;
};

// What %n is to store where.
struct Counter {
    void* target;
    int64_t length;
    size_t bytes;
};

// The digits of a number, and what precedes them: a sign, or 0x.
class Digits {
public:
    explicit Digits(const scFormatConversion& conversion) noexcept {
        auto value = static_cast<uint64_t>(conversion.integer);
        const bool isNegative = conversion.kind == FormatKind::kSigned && conversion.integer < 0;
        if (isNegative) value = 0 - value;
        switch (conversion.letter) {
            case L'o':
                AddDigits<8>(value, kLowerDigits);
                if (conversion.Has(kFormatHash) && *first_ != L'0') *--first_ = L'0';
                break;
            case L'x':
            case L'X':
                AddDigits<16>(value, conversion.letter == L'x' ? kLowerDigits : kUpperDigits);
                if (conversion.Has(kFormatHash) && value != 0) AddPrefix(L'0', conversion.letter);
                break;
            default:
                AddDigits<10>(value, kLowerDigits);
                if (conversion.kind == FormatKind::kSigned) AddSign(conversion, isNegative);
        }
    }
    // Of a pointer. The CRT pads a marked one as if its 0X were digits.
    explicit Digits(const void* pointer, bool isMarked) noexcept {
        AddDigits<16>(reinterpret_cast<uintptr_t>(pointer), kUpperDigits);
        while (Count() < kPointerDigits) *--first_ = L'0';
        if (isMarked && pointer) {
            *--first_ = L'X';
            *--first_ = L'0';
        }
    }

    const wchar_t* First() const noexcept { return first_; }
    int64_t Count() const noexcept { return units_ + kMostDigits - first_; }
    const wchar_t* Prefix() const noexcept { return prefix_; }
    int64_t PrefixCount() const noexcept { return prefixCount_; }
    void Clear() noexcept { first_ = units_ + kMostDigits; }

private:
    static constexpr size_t kMostDigits = 24; // octal ones of 64 bits, and a zero

    template <unsigned kBase>
    void AddDigits(uint64_t value, const wchar_t* digits) noexcept {
        do *--first_ = digits[value % kBase];
        while (value /= kBase);
    }
    void AddPrefix(wchar_t first, wchar_t second) noexcept {
        prefix_[0] = first;
        prefix_[1] = second;
        prefixCount_ = 2;
    }
    void AddSign(const scFormatConversion& conversion, bool isNegative) noexcept {
        const wchar_t sign = isNegative                     ? L'-'
                             : conversion.Has(kFormatPlus)  ? L'+'
                             : conversion.Has(kFormatBlank) ? L' '
                                                            : L'\0';
        prefix_[0] = sign;
        prefixCount_ = sign != 0;
    }

    wchar_t units_[kMostDigits];
    wchar_t* first_ = units_ + kMostDigits;
    wchar_t prefix_[2];
    int64_t prefixCount_ = 0;
};

// Writes the pieces of a format. What it reads may raise a fault; it owns nothing.
class Writer {
public:
    Writer(clsUnitBuffer& target, WCValSList<Counter>& counters) noexcept
        : target_(target), counters_(counters) {}

    void AddLiteral(const wchar_t* text, int64_t count) { target_.Append(text, count); }

    bool AddConversion(const scFormatConversion& conversion) {
        padding_ += conversion.width + std::max<int64_t>(conversion.precision, 0);
        if (padding_ > kMostFormatPadding) return false;
        switch (conversion.kind) {
            case FormatKind::kPointer:
                return AddPointer(conversion);
            case FormatKind::kFloat:
                return AddFloat(conversion);
            case FormatKind::kUnit:
                return AddUnit(conversion);
            case FormatKind::kText:
                return AddText(conversion);
            case FormatKind::kCountedText:
                return AddCountedText(conversion);
            case FormatKind::kCounter:
                return AddCounter(conversion);
            default:
                return AddInteger(conversion);
        }
    }

    // Ends the text at the first zero unit.
    void Finish() noexcept {
        if (mayHaveZeroUnit_)
            target_.Cut(static_cast<int64_t>(
                FindUnitWithin(target_.Text(), static_cast<size_t>(target_.Length()), L'\0')));
    }

private:
    bool AddInteger(const scFormatConversion& conversion) {
        Digits digits(conversion);
        const bool keepsZero = conversion.letter == L'o' && conversion.Has(kFormatHash);
        if (conversion.precision == 0 && !keepsZero && conversion.integer == 0) digits.Clear();
        AddDigits(conversion, digits);
        return true;
    }

    bool AddPointer(const scFormatConversion& conversion) {
        AddDigits(conversion, Digits(conversion.pointer, conversion.Has(kFormatHash)));
        return true;
    }

    void AddDigits(const scFormatConversion& conversion, const Digits& digits) {
        const int64_t length = digits.PrefixCount() + digits.Count();
        int64_t zeros = std::max<int64_t>(conversion.precision - digits.Count(), 0);
        int64_t blanks = std::max<int64_t>(conversion.width - length - zeros, 0);
        const bool isLeft = conversion.Has(kFormatMinus);
        if (conversion.Has(kFormatZero) && !isLeft && conversion.precision < 0)
            zeros += std::exchange(blanks, 0);
        if (!isLeft) AddRepeated(L' ', std::exchange(blanks, 0));
        AddLiteral(digits.Prefix(), digits.PrefixCount());
        AddRepeated(L'0', zeros);
        AddLiteral(digits.First(), digits.Count());
        AddRepeated(L' ', blanks);
    }

    void AddRepeated(wchar_t unit, int64_t count) {
        if (count <= 0) return;
        std::fill_n(target_.Reserve(count), count, unit);
        target_.Extend(count);
    }

    bool AddFloat(const scFormatConversion& conversion) {
        const int64_t digits = std::max(conversion.precision, kDefaultPrecision) + kMostIntegralDigits;
        return AddByCrt(conversion, std::max(conversion.width, digits) + kFloatSize, conversion.precision,
                        L"", conversion.letter == L'F' ? L'f' : conversion.letter, conversion.number);
    }

    bool AddUnit(const scFormatConversion& conversion) {
        const auto unit = static_cast<wchar_t>(conversion.integer);
        const bool isPlain = conversion.width <= 1 && (!conversion.IsNarrow() || IsAscii(unit));
        mayHaveZeroUnit_ |= unit == 0 || !isPlain;
        if (!isPlain)
            return AddByCrt(conversion, std::max<int64_t>(conversion.width, 2), -1,
                            conversion.IsNarrow() ? L"h" : L"l", L'c', static_cast<int>(conversion.integer));
        AddLiteral(&unit, 1);
        return true;
    }

    // The whole text is checked, also where the precision cuts it.
    bool AddText(const scFormatConversion& conversion) {
        if (conversion.pointer == nullptr) return false;
        if (conversion.IsNarrow()) {
            const auto* const text = static_cast<const char*>(conversion.pointer);
            return AddNarrowText(conversion, text, CutTo(conversion.precision, std::strlen(text)));
        }
        const auto* const text = static_cast<const wchar_t*>(conversion.pointer);
        AddWideText(conversion, text, CutTo(conversion.precision, UnitLength(text)));
        return true;
    }

    bool AddCountedText(const scFormatConversion& conversion) {
        const auto* const counted = static_cast<const CountedText*>(conversion.pointer);
        if (counted == nullptr || !ProbeRead(counted, sizeof *counted)) return false;
        if (counted->text == nullptr || !ProbeRead(counted->text, counted->bytes)) return false;
        if (conversion.IsNarrow()) {
            const auto* const text = static_cast<const char*>(counted->text);
            const int64_t most = CutTo(conversion.precision, counted->bytes);
            return AddNarrowText(conversion, text,
                                 static_cast<int64_t>(::strnlen(text, static_cast<size_t>(most))));
        }
        const auto* const text = static_cast<const wchar_t*>(counted->text);
        const int64_t most = CutTo(conversion.precision, counted->bytes / sizeof *text);
        AddWideText(conversion, text, static_cast<int64_t>(UnitLength(text, static_cast<size_t>(most))));
        return true;
    }

    static int64_t CutTo(int64_t precision, size_t length) noexcept {
        const auto count = static_cast<int64_t>(length);
        return precision >= 0 ? std::min(precision, count) : count;
    }

    void AddWideText(const scFormatConversion& conversion, const wchar_t* text, int64_t length) {
        const int64_t padding = conversion.width - length;
        const bool isLeft = conversion.Has(kFormatMinus);
        if (!isLeft) AddRepeated(conversion.Has(kFormatZero) ? L'0' : L' ', padding);
        AddLiteral(text, length);
        if (isLeft) AddRepeated(L' ', padding);
    }

    // Other characters than those of ASCII are converted as the CRT does it.
    bool AddNarrowText(const scFormatConversion& conversion, const char* text, int64_t length) {
        if (conversion.width > length || !std::all_of(text, text + length, IsAscii))
            return AddByCrt(conversion, std::max(length, conversion.width), length, L"h", L's', text);
        std::copy_n(text, length, target_.Reserve(length));
        target_.Extend(length);
        return true;
    }

    static bool IsAscii(wchar_t unit) noexcept { return unit < 0x80; }

    bool AddCounter(const scFormatConversion& conversion) {
        void* const counter = const_cast<void*>(conversion.pointer);
        const size_t bytes = conversion.bytes ? conversion.bytes : sizeof(int);
        if (counter == nullptr || !ProbeWrite(counter, std::max(bytes, sizeof(int)))) return false;
        AppendOrThrow(counters_, Counter{counter, target_.Length(), bytes});
        return true;
    }

    // Hands one conversion by itself and in the plainest spelling to the CRT, which may know fewer than there
    // are here and would then leave arguments where they are. It writes at most mostUnits.
    template <class Value>
    bool AddByCrt(const scFormatConversion& conversion, int64_t mostUnits, int64_t precision,
                  const wchar_t* prefix, wchar_t letter, Value value) {
        wchar_t spelling[32] = L"%";
        wchar_t* end = spelling + 1;
        for (const auto& [unit, flag] : kFormatFlags)
            if (conversion.Has(flag)) *end++ = unit;
        const auto most = static_cast<size_t>(spelling + std::size(spelling) - end);
        const auto width = static_cast<int>(conversion.width);
        if (width > 0 && precision >= 0)
            _snwprintf(end, most, L"%d.%d%ls%c", width, static_cast<int>(precision), prefix, letter);
        else if (width > 0)
            _snwprintf(end, most, L"%d%ls%c", width, prefix, letter);
        else if (precision >= 0)
            _snwprintf(end, most, L".%d%ls%c", static_cast<int>(precision), prefix, letter);
        else
            _snwprintf(end, most, L"%ls%c", prefix, letter);
        wchar_t* const target = target_.Reserve(mostUnits + 1);
        const int count = _snwprintf(target, static_cast<size_t>(mostUnits) + 1, spelling, value);
        if (count < 0) return false;
        target_.Extend(count);
        return true;
    }

    clsUnitBuffer& target_;
    WCValSList<Counter>& counters_;
    int64_t padding_ = 0;
    bool mayHaveZeroUnit_ = false;
};

bool FormatUnshielded(clsUnitBuffer& target, WCValSList<Counter>& counters, const wchar_t* format,
                      va_list arguments) {
    Writer writer(target, counters);
    if (!clsFormatReader(format, arguments).Visit(writer)) return false;
    for (const Counter& counter : counters) std::memcpy(counter.target, &counter.length, counter.bytes);
    writer.Finish();
    return true;
}

} // namespace

// Texts are not probed before they are read: a fault ends the work, as also another thread could cause one
// that frees a text meanwhile. What runs in the shield is not noexcept, which would put the C++ run-time's
// handler before it.
bool FormatChecked(clsUnitBuffer& target, const wchar_t* format, va_list arguments) {
    if (format == nullptr) return false;
    WCValSList<Counter> counters;
    bool isFormatted = false;
    return Shielded([&] { isFormatted = FormatUnshielded(target, counters, format, arguments); }) &&
           isFormatted;
}

} // namespace vxut
