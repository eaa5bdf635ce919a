// The lexical elements of PDF: white space, keywords, numbers, names, strings.
//
// Source: PDF 1.7 (ISO 32000-1), section 7.2 and 7.3. The functions differ from it where their comments say
// so; callers rely on the differences.
//
// A zero byte ends the text for all of them, except within literal strings. They throw std::bad_alloc, and
// clsException where they say so.
#pragma once

#include "base/byte_cursor.h"
#include "text/string.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vxut {

// A position in the bytes of a PDF file. A value; the bytes must outlive it.
class clsPdfPosition {
public:
    // Precondition: text[size] is zero.
    clsPdfPosition(const char* text, size_t size) noexcept : bytes_(text, size) {}

    // The byte at the position; 0 at the end of the text.
    uint8_t Byte() const noexcept;
    bool IsAtEnd() const noexcept { return Byte() == 0; }
    bool IsAtWhiteSpace() const noexcept;
    bool StartsWith(std::string_view word) const noexcept { return bytes_.StartsWith(word); }
    // The bytes from the position on, terminated, for functions of the C library.
    const char* Rest() const noexcept { return reinterpret_cast<const char*>(bytes_.Rest().data()); }

    // Reads a byte, which may be zero. Returns false at the end of the bytes.
    bool ReadByte(uint8_t& byte) noexcept { return bytes_.ReadLittle(byte); }
    // Moves by so many bytes, zero ones included. Returns false, without moving, if there are fewer.
    bool Skip(size_t count) noexcept { return bytes_.Skip(count); }
    // Moves by at most so many bytes.
    void SkipAtMost(size_t count) noexcept;
    void SkipWhiteSpace() noexcept;
    // Moves to the next line end, or the end of the text.
    void SkipComment() noexcept;
    // Moves to the next occurrence of a word. Returns false, without moving, if there is none before the end
    // of the text.
    bool Find(std::string_view word) noexcept;

private:
    size_t TextEnd() noexcept;

    clsByteCursor bytes_;
    size_t textEnd_ = 0; // of the next zero byte or the end of the bytes, if not before the position
    bool knowsTextEnd_ = false;
};

// Moves behind the next occurrence of a word and the white space after it. Returns false, without moving, if
// there is none.
bool PdfSkipTo(clsPdfPosition& position, std::string_view word);

// Reads a number as strtol() does. Returns false, with a value of 0 and the position unchanged, if there is
// none.
bool PdfDigits(clsPdfPosition& position, int32_t& value);

// Reads a number, 0 if there is none, and the white space after it.
int32_t PdfInteger(clsPdfPosition& position);

// The same for a number among values, of which at least one byte is skipped. The fraction is skipped too:
// "1.5" is 1.
int32_t PdfNumber(clsPdfPosition& position);

// Reads one character of a literal string. Unescaped parentheses change the depth; at the one that closes the
// string, and at the end of the bytes, returns false. Line ends are characters, also behind a backslash.
bool PdfStringChar(clsPdfPosition& position, wchar_t& character, int& depth);

// "(...)". With a byte order mark, in bytes or octal escapes, each two characters make a unit; the high one
// counts 16 times, so that only text below U+0100 is right. Characters of value 0 are left out.
String PdfLiteralString(clsPdfPosition& position);

// "<...>": UTF-16 or UTF-8 with a byte order mark, else one byte for each character. A zero character ends
// the result. Throws clsException if the string is not closed.
String PdfHexString(clsPdfPosition& position);

// "[...]" as it is, without comments, up to the first "]".
String PdfArrayText(clsPdfPosition& position);

// "/Name"; empty if there is none.
String PdfName(clsPdfPosition& position);

// The name that is next, comments and white space before it left out; empty if something else is next.
String PdfKey(clsPdfPosition& position);

} // namespace vxut
