// The properties that office programs write into web pages and loose XML:
//
//     <o:DocumentProperties><o:Author>A. Writer</o:Author></o:DocumentProperties>
#include "docinfo/readers/named_property.h"
#include "docinfo/readers/properties.h"
#include "docinfo/readers/readers.h"
#include "locale/date_forms.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace vxut {
namespace {

constexpr std::wstring_view kOpening = L"<o:";

// How many opening tags are tried, each of which may cost a pass over the block. Blocks have about twenty.
constexpr int kMostTries = 2000;

constexpr scNamedProperty kProperties[] = {
    {L"Subject", &clsDocu::Subject},          {L"Author", &clsDocu::Author},
    {L"LastAuthor", &clsDocu::LastAuthor},    {L"Keywords", &clsDocu::Keywords},
    {L"Created", nullptr, &clsDocu::Created}, {L"LastSaved", nullptr, &clsDocu::Modified},
    {L"Description", &clsDocu::Comments}};

struct Element {
    String name;
    String value;
    String whole; // with its tags
};

// Only the letters of ASCII have two cases here.
String Folded(const String& text) {
    String folded = text;
    wchar_t* const units = folded.GetBuffer(text.Length());
    std::transform(units, units + text.Length(), units, [](wchar_t unit) {
        return unit >= L'A' && unit <= L'Z' ? static_cast<wchar_t>(unit - L'A' + L'a') : unit;
    });
    return folded;
}

// Finds the first element that is closed, with names compared without regard to case. A name never contains a
// ">": the tag that closes the longer name would close the shorter one too.
bool FindElement(const String& block, int& tries, Element& element) {
    const String held = Folded(block);
    const std::wstring_view text(held.Text(), static_cast<size_t>(held.Length()));
    for (size_t start = text.find(kOpening); start != text.npos; start = text.find(kOpening, start + 1)) {
        const size_t name = start + kOpening.size();
        const size_t nameEnd = text.find(L'>', name);
        if (nameEnd == text.npos || tries-- <= 0) return false;
        const String closing = String(L"</o:") +
                               held.Mid(static_cast<int64_t>(name), static_cast<int64_t>(nameEnd - name)) +
                               L">";
        const size_t end = text.find(closing.Text(), nameEnd + 1, static_cast<size_t>(closing.Length()));
        if (end == text.npos) continue;
        const auto part = [&](size_t from, size_t to) {
            return block.Mid(static_cast<int64_t>(from), static_cast<int64_t>(to - from));
        };
        element = {part(name, nameEnd), part(nameEnd + 1, end),
                   part(start, end + static_cast<size_t>(closing.Length()))};
        return true;
    }
    return false;
}

// A text that is no date leaves the time.
void TakeTime(SYSTEMTIME& property, const String& value) {
    SYSTEMTIME time = EmptyTime();
    if (ParseIso8601Date(time, value)) property = time;
}

void TakeElement(clsDocu& document, const Element& element) {
    const scNamedProperty* const row = FindProperty(kProperties, element.name);
    if (row && row->text) SetText(document.*row->text, element.value);
    if (row && row->time) TakeTime(document.*row->time, element.value);
}

} // namespace

int ReadOfficeBlock(clsDocu& document, const String& block) {
    String rest = block;
    Element element;
    for (int tries = kMostTries; FindElement(rest, tries, element);) {
        TakeElement(document, element);
        rest.ReplaceText(element.whole, L"");
    }
    return 0;
}

} // namespace vxut
