#include "docinfo/readers/encoded_word.h"

#include "base/owners.h"
#include "docinfo/readers/reader_exception.h"
#include "encoding/base64.h"
#include "encoding/charset.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace vxut {
namespace {

constexpr wchar_t kWord[] = LR"(=\?([-\w]+)(?:\*\w+)?\?([QB])\?(.*?)\?=)";
constexpr std::wstring_view kWordStart = L"=?";
constexpr std::wstring_view kWordEnd = L"?=";

std::wstring_view View(const String& text) { return {text.Text(), static_cast<size_t>(text.Length())}; }

int64_t FindLastEnd(const String& field) {
    const size_t last = View(field).rfind(kWordEnd);
    return last == std::wstring_view::npos ? 0 : static_cast<int64_t>(last + kWordEnd.size());
}

// The value of a unit that ought to be a hexadecimal digit. Others have values too: callers rely on it.
int ValueOf(wchar_t unit) {
    if (unit < L'A') return unit - L'0';
    return unit - (unit < L'a' ? L'A' : L'a') + 10;
}

// Returns the number of bytes written, at most one for each unit.
size_t DecodeQuotedPrintable(std::wstring_view text, char* target) {
    size_t length = 0;
    for (size_t at = 0; at < text.size(); ++at) {
        int value = text[at] == L'_' ? L' ' : text[at];
        if (text[at] == L'=') {
            if (text.size() - at < 3) break;
            value = ValueOf(text[at + 1]) * 16 + ValueOf(text[at + 2]);
            at += 2;
        }
        target[length++] = static_cast<char>(value);
    }
    return length;
}

size_t DecodeBase64Text(std::wstring_view text, char* target) {
    size_t length = 0;
    DecodeBase64(text, {reinterpret_cast<uint8_t*>(target), Base64Capacity(text.size())},
                 Base64Count::kWholeGroups, length);
    return length;
}

} // namespace

clsRFC1342Decoder::clsRFC1342Decoder(const String& field)
    : field_(field), lastEnd_(FindLastEnd(field)), word_(kWord, kRegExCaseless | kRegExAnchored) {}

// What follows the last end of a word is left out, as the search would go through it from each start.
String clsRFC1342Decoder::DecodeAll() {
    if (lastEnd_ == 0) return field_;
    return clsRegEx(kWord, kRegExCaseless).GSub(field_.Left(lastEnd_), *this) + field_.Mid(lastEnd_);
}

bool clsRFC1342Decoder::DecodeAt(int64_t& position, String& decoded) {
    const int64_t end = EndOfWordAt(position);
    clsRegExMatchList groups;
    if (end == 0 || !word_.Match(field_.Mid(position, end - position), &groups)) return false;
    decoded = Replace(groups.get(0).text, groups);
    position = end;
    return true;
}

// The end of a word, if one begins at the position; so no search looks at more than the word. 0 if there is
// certainly none.
int64_t clsRFC1342Decoder::EndOfWordAt(int64_t position) const {
    const std::wstring_view text = View(field_).substr(0, static_cast<size_t>(lastEnd_));
    const auto start = static_cast<size_t>(position);
    if (start >= text.size() || !text.substr(start).starts_with(kWordStart)) return 0;
    const size_t charsetEnd = text.find(L'?', start + kWordStart.size());
    if (charsetEnd == text.npos || text.substr(charsetEnd).size() < 3 || text[charsetEnd + 2] != L'?')
        return 0;
    const size_t end = text.find(kWordEnd, charsetEnd + 3);
    return end == text.npos ? 0 : static_cast<int64_t>(end + kWordEnd.size());
}

String clsRFC1342Decoder::Replace(const String&, const clsRegExMatchList& matches) {
    const String& encoding = matches.get(2).text;
    const String& text = matches.get(3).text;
    const auto units = static_cast<size_t>(text.Length());
    const clsAutoDeleteBytes<char> bytes(new char[std::max(units, Base64Capacity(units)) + 1]);
    size_t length = 0;
    switch (encoding[0]) {
        case L'Q':
        case L'q':
            length = DecodeQuotedPrintable(View(text), bytes.get());
            break;
        case L'B':
        case L'b':
            length = DecodeBase64Text(View(text), bytes.get());
            break;
        default: {
            String message;
            message.Format(L"Bad encoding '%s' in word '%s'", encoding.Text(), field_.Text());
            throw clsException(message);
        }
    }
    bytes[length] = 0;
    return String(clsCharsetConversionStringCP(bytes.get(), CodePageOfCharset(matches.get(1).text, GetACP()))
                      .GetWide());
}

} // namespace vxut
