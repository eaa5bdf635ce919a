#include "text/regex.h"

#include "base/debug.h"
#include "base/text_units.h"
#include "text/append_or_throw.h"
#include "text/unit_buffer.h"

#include <algorithm>
#include <utility>

namespace vxut {
namespace {

String TextOf(const wchar_t* units, size_t count) {
    String text;
    text.Append(units, static_cast<int64_t>(count));
    return text;
}

String TextOf(const clsUnitBuffer& buffer) {
    return TextOf(buffer.Text(), static_cast<size_t>(buffer.Length()));
}

bool IsDigit(wchar_t unit) { return unit >= L'0' && unit <= L'9'; }

} // namespace

// A group of the last match. One that took no part is empty and at the end of the match.
struct clsRegEx::Group {
    size_t start;
    size_t count;
};

// Where a walk over the matches ended, and whether at an empty match, which every further search would find
// again.
struct clsRegEx::Rest {
    size_t position;
    bool isAtEmptyMatch;
};

bool clsRegEx::Compile(const String& pattern, uint32_t options) {
    if (&pattern != &pattern_) pattern_ = pattern;
    options_ = options;
    errorText_.Empty();
    int offset = 0;
    if (engine_.Compile(pattern_, options_, offset, errorText_)) return true;
    DebugWrite(L"Error in RegEx offset %d: '%ws'", offset, errorText_.Text());
    return false;
}

bool clsRegEx::Ensure() { return engine_.IsCompiled() || Compile(pattern_, options_); }

bool clsRegEx::Match(const String& subject, clsRegExMatchList* matches) {
    clsMatchBudget budget;
    return Match(subject, matches, budget);
}

bool clsRegEx::Match(const String& subject, clsRegExMatchList* matches, clsMatchBudget& budget) {
    // The subject may be an element of the list.
    const String held(subject); // NOLINT(performance-unnecessary-copy-initialization)
    if (!MatchUnits(held.Text(), static_cast<size_t>(held.Length()), budget)) return false;
    if (matches) ListGroups(held.Text(), *matches);
    return true;
}

bool clsRegEx::Match(const wchar_t* subject, clsRegExMatchList* matches) {
    return Match(String(subject), matches);
}

bool clsRegEx::MatchUnits(const wchar_t* text, size_t length, clsMatchBudget& budget) {
    if (!Ensure()) return false;
    const int matched = engine_.Match(text, length, budget);
    if (matched == 0) DebugWrite(L"clsRegEx: error: vector too small, or something else happened");
    if (matched < clsRegExEngine::kNoMatch)
        DebugWrite(L"WRN: clsRegEx: search given up, counted as no match: %s; pattern '%s'",
                   clsRegExEngine::MessageOf(matched).Text(), pattern_.Text());
    return matched > 0;
}

clsRegEx::Group clsRegEx::GroupOfMatch(uint32_t group) const {
    if (engine_.Start(group) == clsRegExEngine::kNowhere) return {engine_.End(0), 0};
    const size_t start = engine_.Start(group);
    return {start, std::max(engine_.End(group), start) - start};
}

void clsRegEx::ListGroups(const wchar_t* text, clsRegExMatchList& matches) const {
    // The links of an earlier match of this pattern serve again.
    if (matches.entries() != static_cast<int>(engine_.GroupCount()) + 1) matches.clear();
    auto link = matches.begin();
    for (uint32_t number = 0; number <= engine_.GroupCount(); ++number) {
        const Group group = GroupOfMatch(number);
        scRegExMatch match{static_cast<uint32_t>(group.start), TextOf(text + group.start, group.count)};
        if (link == matches.end())
            AppendOrThrow(matches, std::move(match));
        else
            *link++ = std::move(match);
    }
}

// Calls visit with the subject of each match and the length of the text before the match. Each search has the
// text after the last match as its whole subject.
template <class Visit>
clsRegEx::Rest clsRegEx::ForEachMatch(const String& subject, Visit visit) {
    clsMatchBudget budget;
    const auto length = static_cast<size_t>(subject.Length());
    size_t position = 0;
    while (position < length) {
        const wchar_t* const work = subject.Text() + position;
        if (!MatchUnits(work, length - position, budget)) break;
        const Group whole = GroupOfMatch(0); // visit may search as well
        visit(work, whole.start);
        const size_t end = whole.start + whole.count;
        if (end == 0) return {position, true};
        position += end;
    }
    return {position, false};
}

// Calls replace with the subject of each match; it appends to the result.
template <class Replace>
String clsRegEx::Substitute(const String& subject, Replace replace) {
    clsUnitBuffer result;
    const Rest rest = ForEachMatch(subject, [&](const wchar_t* work, size_t front) {
        result.Append(work, static_cast<int64_t>(front));
        replace(work, result);
    });
    const auto position = static_cast<int64_t>(rest.position);
    if (!rest.isAtEmptyMatch) result.Append(subject.Text() + position, subject.Length() - position);
    return TextOf(result);
}

String clsRegEx::GSub(const String& subject, IclsRegExGSubCB& callback) {
    // The callback may change the subject.
    const String held(subject); // NOLINT(performance-unnecessary-copy-initialization)
    clsRegExMatchList matches;
    return Substitute(held, [&](const wchar_t* work, clsUnitBuffer& result) {
        ListGroups(work, matches);
        const String replacement = callback.Replace(matches.get(0).text, matches);
        result.Append(replacement.Text(), replacement.Length());
    });
}

String clsRegEx::GSub(const String& subject, const String& replacement) {
    return Substitute(subject, [&](const wchar_t* work, clsUnitBuffer& result) {
        AppendTemplate(replacement, work, result);
    });
}

// Expands a template: "\d" is group d.
void clsRegEx::AppendTemplate(const String& replacement, const wchar_t* text, clsUnitBuffer& result) const {
    const wchar_t* const end = replacement.Text() + replacement.Length();
    for (const wchar_t* at = replacement.Text();;) {
        const auto literal = FindUnitWithin(at, static_cast<size_t>(end - at), L'\\');
        result.Append(at, static_cast<int64_t>(literal));
        at += literal;
        if (at == end) return;
        const wchar_t next = at + 1 < end ? at[1] : L'\0';
        if (IsDigit(next)) {
            if (!AppendGroup(static_cast<uint32_t>(next - L'0'), text, result)) return;
            at += 2;
        } else {
            const int units = next == L'\\' ? 2 : 1;
            result.Append(at, units);
            at += units;
        }
    }
}

bool clsRegEx::AppendGroup(uint32_t number, const wchar_t* text, clsUnitBuffer& result) const {
    if (number > engine_.GroupCount()) {
        DebugWrite(L"ERR: clsRegEx: Match(%d) not found (index too large, found only %d entries)", number,
                   engine_.GroupCount() + 1);
        return false;
    }
    const Group group = GroupOfMatch(number);
    result.Append(text + group.start, static_cast<int64_t>(group.count));
    return true;
}

WCValSList<String> clsRegEx::SplitInto(const String& subject, bool withGroups) {
    WCValSList<String> pieces;
    const Rest rest = ForEachMatch(subject, [&](const wchar_t* work, size_t front) {
        AppendOrThrow(pieces, TextOf(work, front));
        if (!withGroups) return;
        for (uint32_t number = 1; number <= engine_.GroupCount(); ++number) {
            const Group group = GroupOfMatch(number);
            AppendOrThrow(pieces, TextOf(work + group.start, group.count));
        }
    });
    AppendOrThrow(pieces, TextOf(subject.Text() + rest.position,
                                 static_cast<size_t>(subject.Length()) - rest.position));
    return pieces;
}

WCValSList<String> clsRegEx::Split(const String& subject) { return SplitInto(subject, false); }

WCValSList<String> clsRegEx::SplitGroups(const String& subject) { return SplitInto(subject, true); }

} // namespace vxut
