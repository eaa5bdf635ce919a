#include "profile/forms/xml_text.h"

#include "base/digits.h"
#include "base/text_units.h"

#include <cstdint>
#include <cstring>

namespace vxut {
namespace {

constexpr wchar_t kFirstPrintable = 0x20;
constexpr std::wstring_view kNameAttribute = L"name=\"";

struct Reference {
    std::wstring_view text;
    std::wstring_view meaning;
};
// In the order in which a reader tests them.
constexpr Reference kReferences[] = {
    {L"&cr;", L"\r\n"}, {L"&tab;", L"\t"}, {L"&lt;", L"<"},    {L"&gt;", L">"},
    {L"&amp;", L"&"},   {L"&apos;", L"'"}, {L"&quot;", L"\""},
};

struct NumberPrefix {
    std::wstring_view prefix;
    uint32_t base;
};
constexpr NumberPrefix kNumbers[] = {{L"&#x", 16}, {L"&#", 10}};

// One bit for each unit below 64 that is written as a reference; there are none above.
constexpr uint64_t SpecialUnits() {
    uint64_t bits = (uint64_t{1} << kFirstPrintable) - 1;
    for (const wchar_t unit : {L'<', L'>', L'&', L'\'', L'"'}) bits |= uint64_t{1} << unit;
    return bits;
}
constexpr uint64_t kSpecialUnits = SpecialUnits();

bool IsSpecial(wchar_t unit) { return unit < 64 && (kSpecialUnits >> unit & 1) != 0; }

void PutNumber(clsProfOutput& output, wchar_t unit) {
    constexpr wchar_t kDigits[] = L"0123456789abcdef";
    const wchar_t text[] = {L'&', L'#', L'x', L'0', L'0', kDigits[unit / 16], kDigits[unit % 16], L';'};
    output.Put({text, std::size(text)});
}

void PutReference(clsProfOutput& output, wchar_t unit) {
    if (unit == L'\r' || unit == L'\n') return output.Put(kReferences[0].text);
    for (const Reference& reference : kReferences)
        if (reference.meaning.front() == unit) return output.Put(reference.text);
    PutNumber(output, unit);
}

// A position in a text that is rewritten in place: what is written never passes what is read.
class Rewriter {
public:
    Rewriter(wchar_t* text, size_t length) noexcept : text_(text), length_(length) {}

    size_t Run() noexcept {
        while (CopyPlain()) ReadReference();
        return written_;
    }

private:
    std::wstring_view Rest() const noexcept { return {text_ + read_, length_ - read_}; }
    void Write(wchar_t unit) noexcept { text_[written_++] = unit; }

    // Copies up to the next "&". Returns false at the end.
    bool CopyPlain() noexcept {
        const size_t count = FindUnitWithin(text_ + read_, length_ - read_, L'&');
        std::memmove(text_ + written_, text_ + read_, count * sizeof(wchar_t));
        written_ += count;
        read_ += count;
        return read_ < length_;
    }

    void ReadReference() noexcept {
        for (const Reference& reference : kReferences) {
            if (!Rest().starts_with(reference.text)) continue;
            read_ += reference.text.size();
            for (const wchar_t unit : reference.meaning) Write(unit);
            return;
        }
        for (const NumberPrefix& number : kNumbers)
            if (Rest().starts_with(number.prefix)) return ReadNumber(number);
        Write(text_[read_++]);
    }

    void ReadNumber(const NumberPrefix& number) noexcept {
        read_ += number.prefix.size();
        uint32_t value = 0;
        for (uint32_t digit = 0; read_ < length_; ++read_) {
            digit = DigitOf(text_[read_], number.base);
            if (digit == number.base) break;
            value = value * number.base + digit;
        }
        const size_t skipped = FindUnitWithin(text_ + read_, length_ - read_, L';');
        read_ += skipped;
        if (read_ < length_) ++read_;
        Write(static_cast<wchar_t>(value));
    }

    wchar_t* const text_;
    const size_t length_;
    size_t read_ = 0;
    size_t written_ = 0;
};

} // namespace

void XmlPutEscaped(clsProfOutput& output, std::wstring_view text) {
    size_t written = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        if (!IsSpecial(text[i])) continue;
        output.Put(text.substr(written, i - written));
        written = i + 1;
        const bool isBeforeLineFeed = text[i] == L'\r' && written < text.size() && text[written] == L'\n';
        if (!isBeforeLineFeed) PutReference(output, text[i]);
    }
    output.Put(text.substr(written));
}

size_t XmlUnescape(wchar_t* text, size_t length) noexcept { return Rewriter(text, length).Run(); }

std::wstring_view clsXmlUnescaper::Read(std::wstring_view text) {
    if (FindUnitWithin(text.data(), text.size(), L'&') == text.size()) return text;
    wchar_t* const copy = buffer_.GetBuffer(static_cast<int64_t>(text.size()));
    std::memcpy(copy, text.data(), text.size() * sizeof(wchar_t));
    return {copy, XmlUnescape(copy, text.size())};
}

bool XmlStartsWith(std::wstring_view text, std::wstring_view tag) noexcept {
    if (text.size() < tag.size()) return false;
    for (size_t i = 0; i < tag.size(); ++i) {
        const bool isUpper = text[i] >= L'A' && text[i] <= L'Z';
        if ((isUpper ? text[i] + (L'a' - L'A') : text[i]) != tag[i]) return false;
    }
    return true;
}

bool XmlTakeUntil(std::wstring_view& text, std::wstring_view delimiter, std::wstring_view& taken) noexcept {
    const size_t position = FindUnitsWithin(text.data(), text.size(), delimiter.data(), delimiter.size());
    if (position == text.size()) return false;
    taken = text.substr(0, position);
    text.remove_prefix(position + delimiter.size());
    return true;
}

const wchar_t* XmlTakeName(std::wstring_view& text, const scXmlNameMessages& messages,
                           std::wstring_view& name) noexcept {
    std::wstring_view before;
    if (!XmlTakeUntil(text, kNameAttribute, before)) return messages.missing;
    return XmlTakeUntil(text, L"\"", name) ? nullptr : messages.unfinished;
}

} // namespace vxut
