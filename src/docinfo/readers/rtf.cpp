// RTF: the info group.
//
// Source: Rich Text Format 1.9.1, "Information Group". There is no tokeniser: the group is taken apart by
// patterns.
#include "docinfo/readers/rtf.h"

#include "base/digits.h"
#include "docinfo/readers/head_text.h"
#include "docinfo/readers/named_property.h"
#include "docinfo/readers/properties.h"
#include "docinfo/readers/readers.h"
#include "text/shared_regex.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace vxut {
namespace {

// Far more than honest files have. Each costs a pass over the text.
constexpr int kMostGroups = 1000;
constexpr int kMostTimeWords = 1000;

constexpr size_t kEscapeUnits = 4; // "\'e4"

// The group is found by its start, and by the end of its last item: nothing between them needs to match, as
// any item may contain what looks like the end of one. So each pattern needs one pass over the text.
clsSharedRegEx infoPattern(LR"(\{\\info(?=\{\\[a-z]+[\s\d\\]))", kRegExCaseless);
clsSharedRegEx infoEndPattern(LR"(\}\s*\})");
clsSharedRegEx itemPattern(LR"(\{\\([a-z]+)([\s\d\\][^}]*)\})", kRegExCaseless);
clsSharedRegEx timeWordPattern(LR"(\\([a-z]+)(\d+))");

constexpr scNamedProperty kProperties[] = {{L"subject", &clsDocu::Subject},
                                           {L"author", &clsDocu::Author},
                                           {L"title", &clsDocu::Title},
                                           {L"keywords", &clsDocu::Keywords},
                                           {L"creatim", nullptr, &clsDocu::Created},
                                           {L"revtim", nullptr, &clsDocu::Modified},
                                           {L"doccomm", &clsDocu::Comments}};

struct TimeWord {
    const wchar_t* word;
    WORD SYSTEMTIME::* field;
};
constexpr TimeWord kTimeWords[] = {{L"yr", &SYSTEMTIME::wYear},
                                   {L"mo", &SYSTEMTIME::wMonth},
                                   {L"dy", &SYSTEMTIME::wDay},
                                   {L"hr", &SYSTEMTIME::wHour},
                                   {L"min", &SYSTEMTIME::wMinute}};

bool IsWhiteSpace(wchar_t unit) { return unit == L' ' || (unit >= L'\t' && unit <= L'\r'); }

bool EndsInEscape(const wchar_t* text, size_t length) {
    if (length < kEscapeUnits) return false;
    const wchar_t* const escape = text + length - kEscapeUnits;
    return escape[0] == L'\\' && escape[1] == L'\'' && DigitOf(escape[2], 16) < 16 &&
           DigitOf(escape[3], 16) < 16;
}

// Appends a unit. Where it completes an escape, the escape is replaced, which may complete another one.
// Returns the new end.
size_t AppendDecoded(wchar_t* text, size_t length, wchar_t unit) {
    for (;;) {
        text[length++] = unit;
        if (!EndsInEscape(text, length)) return length;
        unit = static_cast<wchar_t>(DigitOf(text[length - 2], 16) * 16 + DigitOf(text[length - 1], 16));
        length -= kEscapeUnits;
        if (unit == 0) return length;
    }
}

bool FindItems(const String& text, String& items) {
    clsRegExMatchList groups;
    if (!infoPattern.Match(text, &groups)) return false;
    const scRegExMatch& info = groups.get(0);
    const String rest = text.Mid(info.position + info.text.Length());
    if (!infoEndPattern.Match(rest, &groups)) return false;
    items = rest.Left(groups.get(0).position + 1);
    return true;
}

// White space before the end of a group is not part of its value, except for the unit after the name.
String WithoutTrail(String value) {
    int64_t end = value.Length();
    while (end > 1 && IsWhiteSpace(value.Text()[end - 1])) --end;
    value.Delete(end, value.Length() - end);
    return value;
}

// Words that are missing leave their fields.
void TakeTime(SYSTEMTIME& time, String value) {
    clsRegExMatchList groups;
    for (int words = 0; words < kMostTimeWords && timeWordPattern.Match(value, &groups); ++words) {
        for (const TimeWord& row : kTimeWords)
            if (groups.get(1).text == row.word)
                time.*row.field = static_cast<WORD>(_wtoi(groups.get(2).text.Text()));
        value.ReplaceText(groups.get(0).text, L"");
    }
}

void TakeItem(clsDocu& document, const String& name, const String& value) {
    const scNamedProperty* const row = FindProperty(kProperties, name);
    if (row && row->text) SetText(document.*row->text, value);
    if (row && row->time) TakeTime(document.*row->time, value);
}

// No item ends behind the last brace. Left out, that part cannot be searched from each start of an item.
void CutBehindLastBrace(String& items) {
    int64_t end = items.Length();
    while (end > 0 && items.Text()[end - 1] != L'}') --end;
    items.Delete(end, items.Length() - end);
}

void TakeItems(clsDocu& document, String items) {
    clsRegExMatchList groups;
    for (int count = 0; count < kMostGroups; ++count) {
        CutBehindLastBrace(items);
        if (!itemPattern.Match(items, &groups)) return;
        TakeItem(document, groups.get(1).text, RtfDecodeText(WithoutTrail(groups.get(2).text)));
        items.ReplaceText(groups.get(0).text, L"");
    }
}

} // namespace

// No escape overlaps another one, so the order of replacements does not change the result. The text is
// decoded over itself: what is written never overtakes what is read.
String RtfDecodeText(const String& text) {
    if (text.IsEmpty()) return text;
    String result = text;
    wchar_t* const units = result.GetBuffer(text.Length());
    size_t length = 0;
    for (size_t at = 0; at < static_cast<size_t>(text.Length()); ++at)
        if (units[at] != L'\r' && units[at] != L'\n') length = AppendDecoded(units, length, units[at]);
    result.SetLength(static_cast<int64_t>(length));
    result.ReplaceText(LR"(\\)", LR"(\)");
    return result;
}

int ReadRtf(clsDocu& document, clsDocFile& file) {
    String text;
    String items;
    if (ReadHeadText(file, text) && FindItems(text, items)) TakeItems(document, RtfDecodeText(items));
    return 0;
}

} // namespace vxut
