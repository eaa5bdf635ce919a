#include "text/format_reader.h"

#include <array>
#include <cwchar>

namespace vxut {
namespace {

struct Letter {
    wchar_t letter;
    FormatKind kind;
};

constexpr Letter kLetters[] = {
    {L'd', FormatKind::kSigned},   {L'i', FormatKind::kSigned},      {L'o', FormatKind::kUnsigned},
    {L'u', FormatKind::kUnsigned}, {L'x', FormatKind::kUnsigned},    {L'X', FormatKind::kUnsigned},
    {L'a', FormatKind::kFloat},    {L'A', FormatKind::kFloat},       {L'e', FormatKind::kFloat},
    {L'E', FormatKind::kFloat},    {L'f', FormatKind::kFloat},       {L'F', FormatKind::kFloat},
    {L'g', FormatKind::kFloat},    {L'G', FormatKind::kFloat},       {L'p', FormatKind::kPointer},
    {L'c', FormatKind::kUnit},     {L'C', FormatKind::kUnit},        {L's', FormatKind::kText},
    {L'S', FormatKind::kText},     {L'Z', FormatKind::kCountedText}, {L'n', FormatKind::kCounter},
};

struct SizePrefix {
    const wchar_t* text;
    uint8_t bytes; // of an integer; 0: the prefix does not say
    FormatUnits units;
};

// A prefix that begins with another one precedes it. F and N are relics without a meaning.
constexpr SizePrefix kSizePrefixes[] = {
    {L"I64", 8, FormatUnits::kByLetter},
    {L"I32", 4, FormatUnits::kByLetter},
    {L"I", sizeof(void*), FormatUnits::kByLetter},
    {L"ll", 8, FormatUnits::kWide},
    {L"l", 4, FormatUnits::kWide},
    {L"hh", 1, FormatUnits::kNarrow},
    {L"h", 2, FormatUnits::kNarrow},
    {L"w", 0, FormatUnits::kWide},
    {L"j", 8, FormatUnits::kByLetter},
    {L"z", sizeof(void*), FormatUnits::kByLetter},
    {L"t", sizeof(void*), FormatUnits::kByLetter},
    {L"L", 0, FormatUnits::kByLetter},
    {L"F", 0, FormatUnits::kByLetter},
    {L"N", 0, FormatUnits::kByLetter},
};

// What a unit may be behind a percent sign.
struct Meaning {
    FormatKind kind;
    uint8_t flag;
    bool beginsSizePrefix;
};

constexpr size_t kMeanings = 128;

constexpr auto kMeaningOf = [] {
    std::array<Meaning, kMeanings> meanings{};
    for (const Letter& row : kLetters) meanings[row.letter].kind = row.kind;
    for (const scFormatFlag& row : kFormatFlags) meanings[row.unit].flag = row.flag;
    for (const SizePrefix& row : kSizePrefixes) meanings[*row.text].beginsSizePrefix = true;
    return meanings;
}();

constexpr Meaning MeaningOf(wchar_t unit) noexcept { return unit < kMeanings ? kMeaningOf[unit] : Meaning{}; }

const SizePrefix* FindSizePrefix(const wchar_t* text) {
    if (!MeaningOf(*text).beginsSizePrefix) return nullptr;
    for (const SizePrefix& row : kSizePrefixes)
        if (*text == *row.text && std::wcsncmp(text, row.text, std::wcslen(row.text)) == 0) return &row;
    return nullptr;
}

// Cuts an integer to its size and makes 64 bits of it again.
int64_t Truncated(int64_t integer, uint8_t bytes, FormatKind kind) noexcept {
    const int shift = 64 - 8 * (bytes ? bytes : 4);
    const uint64_t top = static_cast<uint64_t>(integer) << shift;
    return kind == FormatKind::kSigned ? static_cast<int64_t>(top) >> shift
                                       : static_cast<int64_t>(top >> shift);
}

} // namespace

bool clsFormatReader::ReadOptions(scFormatConversion& conversion) {
    bool takesNumbers = false;
    for (uint8_t flag; (flag = MeaningOf(*next_).flag) != 0; ++next_) conversion.flags |= flag;
    conversion.width = ReadNumber(takesNumbers);
    if (conversion.width < 0) {
        conversion.flags |= kFormatMinus;
        conversion.width = -conversion.width;
    }
    if (*next_ == L'.') {
        ++next_;
        conversion.precision = std::max<int64_t>(ReadNumber(takesNumbers), -1);
    }
    ReadSizePrefixes(conversion);
    return takesNumbers;
}

int64_t clsFormatReader::ReadNumber(bool& takesNumbers) {
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

void clsFormatReader::ReadSizePrefixes(scFormatConversion& conversion) {
    while (const SizePrefix* const prefix = FindSizePrefix(next_)) {
        const wchar_t* const behind = next_ + std::wcslen(prefix->text);
        // F is a letter as well: it is a prefix only if a letter or a prefix follows.
        if (*next_ == L'F' && MeaningOf(*behind).kind == FormatKind::kNone && !FindSizePrefix(behind)) return;
        next_ = behind;
        if (prefix->bytes) conversion.bytes = prefix->bytes;
        if (prefix->units != FormatUnits::kByLetter) conversion.units = prefix->units;
    }
}

bool clsFormatReader::ReadLetter(scFormatConversion& conversion) {
    conversion.letter = *next_++;
    conversion.kind = MeaningOf(conversion.letter).kind;
    if (conversion.kind == FormatKind::kNone) return false;
    TakeArgument(conversion);
    return true;
}

void clsFormatReader::TakeArgument(scFormatConversion& conversion) {
    switch (conversion.kind) {
        case FormatKind::kSigned:
        case FormatKind::kUnsigned:
            conversion.integer =
                Truncated(conversion.bytes == 8 ? va_arg(arguments_, int64_t) : va_arg(arguments_, int),
                          conversion.bytes, conversion.kind);
            break;
        case FormatKind::kFloat:
            conversion.number = va_arg(arguments_, double);
            break;
        case FormatKind::kUnit:
            conversion.integer = va_arg(arguments_, int);
            break;
        default:
            conversion.pointer = va_arg(arguments_, const void*);
    }
}

} // namespace vxut
