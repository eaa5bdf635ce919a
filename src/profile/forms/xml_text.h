// What the readers and the writer of the XML forms share: character references, tags and attributes.
#pragma once

#include "profile/output.h"
#include "text/string.h"

#include <cstddef>
#include <string_view>

namespace vxut {

// Writes a text with the form's references for control characters and for the characters of tags. A CR before
// an LF is dropped, because the reference for a line break stands for both.
void XmlPutEscaped(clsProfOutput& output, std::wstring_view text);

// Replaces references by what they stand for and returns the new length, which is never larger. What is not a
// known reference stays. A number in a reference counts modulo 0x10000; a number without a ";" behind it ends
// the text.
size_t XmlUnescape(wchar_t* text, size_t length) noexcept;

// Unescapes texts that must not change.
class clsXmlUnescaper {
public:
    // Valid until the next call, and no longer than the text. Throws std::bad_alloc.
    std::wstring_view Read(std::wstring_view text);

private:
    String buffer_;
};

// Whether a text begins with a tag, in any case. The tag is in lower case and of ASCII letters.
bool XmlStartsWith(std::wstring_view text, std::wstring_view tag) noexcept;

// The text without the blanks, or blanks and TABs, that it begins with.
inline std::wstring_view XmlSkip(std::wstring_view text, std::wstring_view skipped = L" \t") noexcept {
    const size_t start = text.find_first_not_of(skipped);
    return start == std::wstring_view::npos ? std::wstring_view() : text.substr(start);
}

// Takes everything up to a delimiter, and the delimiter, from the start of a text. Returns false, and leaves
// the text, if there is no such delimiter.
bool XmlTakeUntil(std::wstring_view& text, std::wstring_view delimiter, std::wstring_view& taken) noexcept;

// What a reader reports about a tag without a name, or without the quotation mark behind it.
struct scXmlNameMessages {
    const wchar_t* missing;
    const wchar_t* unfinished;
};

// Takes the attribute name="..." and everything before it from a text. Returns null, or the message for a
// damaged attribute. The name is not unescaped.
const wchar_t* XmlTakeName(std::wstring_view& text, const scXmlNameMessages& messages,
                           std::wstring_view& name) noexcept;

} // namespace vxut
