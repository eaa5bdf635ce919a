#include "docinfo/readers/pdf_scanner.h"

#include "base/digits.h"
#include "base/owners.h"
#include "docinfo/readers/reader_exception.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace vxut {
namespace {

constexpr std::string_view kWhiteSpace = " \t\r\n";
constexpr std::string_view kNameEnd = " ()<>[]{}/%";
constexpr std::string_view kNumberRest = ".0123456789";
constexpr int kMostOctalDigits = 3;
constexpr size_t kNameEscapeBytes = 3; // "#" and two digits
constexpr int kHighFactor = 16;

bool IsOneOf(uint8_t byte, std::string_view bytes) {
    return bytes.find(static_cast<char>(byte)) != std::string_view::npos;
}

// Escapes of literal strings and the characters that they stand for.
constexpr std::string_view kEscapes = "()\\bfnrt";
constexpr std::string_view kEscaped = "()\\\b\f\n\r\t";
static_assert(kEscapes.size() == kEscaped.size());

bool IsOctal(uint8_t byte) { return byte >= '0' && byte <= '7'; }

// Reads what follows a backslash. Returns false if it makes no escape.
bool ReadEscape(clsPdfPosition& position, wchar_t& character) {
    const size_t escape = kEscapes.find(static_cast<char>(position.Byte()));
    if (escape != std::string_view::npos) {
        character = static_cast<uint8_t>(kEscaped[escape]);
        return position.Skip(1);
    }
    if (!IsOctal(position.Byte())) return false;
    character = 0;
    for (int digits = 0; digits < kMostOctalDigits && IsOctal(position.Byte()); ++digits) {
        character = static_cast<wchar_t>(character * 8 + position.Byte() - '0');
        position.SkipAtMost(1);
    }
    return true;
}

struct PairFactors {
    int first;
    int second;
};
constexpr PairFactors kNoPairs{0, 0};

// Reads a byte order mark, if there is one.
PairFactors ReadMark(clsPdfPosition& position) {
    clsPdfPosition ahead = position;
    wchar_t first = 0;
    wchar_t second = 0;
    int depth = 1;
    if (!PdfStringChar(ahead, first, depth) || !PdfStringChar(ahead, second, depth)) return kNoPairs;
    const bool isBig = first == 0xFE && second == 0xFF;
    if (!isBig && !(first == 0xFF && second == 0xFE)) return kNoPairs;
    position = ahead;
    return isBig ? PairFactors{kHighFactor, 1} : PairFactors{1, kHighFactor};
}

// Decodes the digits of a hexadecimal string. Returns the number of bytes.
size_t DecodeHex(std::string_view digits, char* target) {
    size_t count = 0;
    uint8_t byte = 0;
    for (const char digit : digits) {
        if (IsOneOf(static_cast<uint8_t>(digit), kWhiteSpace)) continue;
        const uint32_t value = DigitOf(static_cast<uint8_t>(digit), 16);
        byte = static_cast<uint8_t>(byte << 4 | (value < 16 ? value : 0));
        if (++count % 2 == 0) target[count / 2 - 1] = static_cast<char>(byte);
    }
    if (count % 2) target[count / 2] = static_cast<char>(byte << 4);
    return (count + 1) / 2;
}

String DecodeUnits(std::string_view bytes, ByteOrder order) {
    String text;
    clsByteCursor units(bytes.data(), bytes.size());
    for (wchar_t unit; units.Read(unit, order) && unit != 0;) text.Append(unit);
    return text;
}

String DecodeBytes(std::string_view bytes) {
    if (bytes.starts_with("\xFF\xFE")) return DecodeUnits(bytes.substr(2), ByteOrder::kLittle);
    if (bytes.starts_with("\xFE\xFF")) return DecodeUnits(bytes.substr(2), ByteOrder::kBig);
    uint32_t codePage = 0; // each byte is a character
    if (bytes.starts_with("\xEF\xBB\xBF")) {
        bytes.remove_prefix(3);
        codePage = CP_UTF8;
    }
    bytes = bytes.substr(0, bytes.find('\0'));
    return clsCHARString(bytes.data(), static_cast<int64_t>(bytes.size())).ToString(codePage);
}

} // namespace

uint8_t clsPdfPosition::Byte() const noexcept {
    uint8_t byte = 0;
    return bytes_.PeekLittle(byte) ? byte : uint8_t{0};
}

bool clsPdfPosition::IsAtWhiteSpace() const noexcept { return !IsAtEnd() && IsOneOf(Byte(), kWhiteSpace); }

void clsPdfPosition::SkipAtMost(size_t count) noexcept { Skip(std::min(count, bytes_.Remaining())); }

void clsPdfPosition::SkipWhiteSpace() noexcept {
    while (IsAtWhiteSpace()) SkipAtMost(1);
}

void clsPdfPosition::SkipComment() noexcept {
    while (!IsAtEnd() && Byte() != '\r' && Byte() != '\n') SkipAtMost(1);
}

// Each byte is looked at once, however many words are searched.
size_t clsPdfPosition::TextEnd() noexcept {
    if (!knowsTextEnd_ || textEnd_ < bytes_.Position()) {
        const auto* const zero = static_cast<const char*>(std::memchr(Rest(), 0, bytes_.Remaining()));
        textEnd_ = bytes_.Position() + (zero ? static_cast<size_t>(zero - Rest()) : bytes_.Remaining());
        knowsTextEnd_ = true;
    }
    return textEnd_;
}

bool clsPdfPosition::Find(std::string_view word) noexcept {
    const std::string_view text(Rest(), TextEnd() - bytes_.Position());
    const size_t found = text.find(word);
    return found != std::string_view::npos && Skip(found);
}

bool PdfSkipTo(clsPdfPosition& position, std::string_view word) {
    if (!position.Find(word)) return false;
    position.SkipAtMost(word.size());
    position.SkipWhiteSpace();
    return true;
}

bool PdfDigits(clsPdfPosition& position, int32_t& value) {
    char* end = nullptr;
    value = std::strtol(position.Rest(), &end, 10);
    const auto length = static_cast<size_t>(end - position.Rest());
    position.SkipAtMost(length);
    return length != 0;
}

int32_t PdfInteger(clsPdfPosition& position) {
    int32_t value = 0;
    PdfDigits(position, value);
    position.SkipWhiteSpace();
    return value;
}

int32_t PdfNumber(clsPdfPosition& position) {
    int32_t value = 0;
    if (!PdfDigits(position, value)) position.SkipAtMost(1);
    while (!position.IsAtEnd() && IsOneOf(position.Byte(), kNumberRest)) position.SkipAtMost(1);
    position.SkipWhiteSpace();
    return value;
}

bool PdfStringChar(clsPdfPosition& position, wchar_t& character, int& depth) {
    uint8_t byte = 0;
    if (!position.ReadByte(byte)) return false;
    if (byte == '\\' && ReadEscape(position, character)) return true;
    character = byte;
    if (byte == '(') ++depth;
    return byte != ')' || --depth != 0;
}

String PdfLiteralString(clsPdfPosition& position) {
    String text;
    if (position.Byte() != '(') return text;
    position.SkipAtMost(1);
    const PairFactors factors = ReadMark(position);
    int depth = 1;
    wchar_t first = 0;
    wchar_t second = 0;
    while (PdfStringChar(position, first, depth)) {
        if (factors.first == 0) {
            text.Append(first);
        } else {
            if (!PdfStringChar(position, second, depth)) break;
            text.Append(static_cast<wchar_t>(first * factors.first + second * factors.second));
        }
    }
    return text;
}

String PdfHexString(clsPdfPosition& position) {
    if (position.Byte() != '<') return {};
    position.SkipAtMost(1);
    const char* const start = position.Rest();
    if (!position.Find(">")) throw clsException(L"premature end of object");
    const std::string_view digits(start, static_cast<size_t>(position.Rest() - start));
    position.SkipAtMost(1);
    const clsAutoDeleteBytes<char> bytes(new char[digits.size() / 2 + 1]);
    return DecodeBytes({bytes.get(), DecodeHex(digits, bytes.get())});
}

String PdfArrayText(clsPdfPosition& position) {
    String text;
    position.SkipAtMost(1);
    while (!position.IsAtEnd() && position.Byte() != ']') {
        if (position.Byte() == '%') {
            position.SkipComment();
        } else {
            text.Append(static_cast<wchar_t>(position.Byte()));
            position.SkipAtMost(1);
        }
    }
    if (!position.IsAtEnd()) position.SkipAtMost(1);
    return text;
}

String PdfName(clsPdfPosition& position) {
    String name;
    if (position.Byte() != '/') return name;
    position.SkipAtMost(1);
    while (!position.IsAtEnd() && !IsOneOf(position.Byte(), kNameEnd) && !position.IsAtWhiteSpace()) {
        if (position.Byte() == '#') {
            // All digits count towards the value, although only two belong to the escape.
            const long value = std::strtol(position.Rest() + 1, nullptr, 16);
            name.Append(static_cast<wchar_t>(static_cast<uint8_t>(value)));
            position.SkipAtMost(kNameEscapeBytes);
        } else {
            name.Append(static_cast<wchar_t>(position.Byte()));
            position.SkipAtMost(1);
        }
    }
    return name;
}

String PdfKey(clsPdfPosition& position) {
    position.SkipWhiteSpace();
    while (position.Byte() == '%') {
        position.SkipComment();
        position.SkipWhiteSpace();
    }
    return PdfName(position);
}

} // namespace vxut
