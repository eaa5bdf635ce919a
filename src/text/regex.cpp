#include "text/regex.h"

#include "base/debug.h"
#include "text/append_or_throw.h"

#include <algorithm>

namespace vxut {
namespace {

String TextOf(const wchar_t* units, size_t count) {
    String text;
    text.Append(units, static_cast<int64_t>(count));
    return text;
}

bool IsDigit(wchar_t unit) { return unit >= L'0' && unit <= L'9'; }

// Expands a replacement template: "\d" is group d.
class clsTemplateFiller final : public IclsRegExGSubCB {
public:
    explicit clsTemplateFiller(const String& replacement) : replacement_(replacement) {}

    String Replace(const String& /*match*/, const clsRegExMatchList& matches) override {
        String filled;
        const wchar_t* const end = replacement_.Text() + replacement_.Length();
        for (const wchar_t* at = replacement_.Text(); at < end;) {
            const wchar_t next = *at == L'\\' && at + 1 < end ? at[1] : L'\0';
            if (IsDigit(next)) {
                if (!AppendGroup(next - L'0', matches, filled)) break;
                at += 2;
            } else {
                const int units = next == L'\\' ? 2 : 1;
                filled.Append(at, units);
                at += units;
            }
        }
        return filled;
    }

private:
    static bool AppendGroup(int group, const clsRegExMatchList& matches, String& filled) {
        if (group >= matches.entries()) {
            DebugWrite(L"ERR: clsRegEx: Match(%d) not found (index too large, found only %d entries)", group,
                       matches.entries());
            return false;
        }
        filled.Append(matches.get(group).text);
        return true;
    }

    const String& replacement_;
};

} // namespace

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
    // The subject may be an element of the list.
    const String held(subject); // NOLINT(performance-unnecessary-copy-initialization)
    clsMatchBudget budget;
    return MatchUnits(held.Text(), static_cast<size_t>(held.Length()), matches, budget);
}

bool clsRegEx::Match(const wchar_t* subject, clsRegExMatchList* matches) {
    return Match(String(subject), matches);
}

bool clsRegEx::MatchUnits(const wchar_t* text, size_t length, clsRegExMatchList* matches,
                          clsMatchBudget& budget) {
    if (!Ensure()) return false;
    const int matched = engine_.Match(text, length, budget);
    if (matched == 0) {
        DebugWrite(L"clsRegEx: error: vector too small, or something else happened");
        engine_ = clsRegExEngine(); // lacked memory for results; the next use compiles again
    }
    if (matched < clsRegExEngine::kNoMatch)
        DebugWrite(L"WRN: clsRegEx: search given up, counted as no match: %s; pattern '%s'",
                   clsRegExEngine::MessageOf(matched).Text(), pattern_.Text());
    if (matched <= 0) return false;
    if (matches) ListGroups(text, *matches);
    return true;
}

void clsRegEx::ListGroups(const wchar_t* text, clsRegExMatchList& matches) const {
    matches.clear();
    for (uint32_t group = 0; group <= engine_.GroupCount(); ++group) {
        const bool tookPart = engine_.Start(group) != clsRegExEngine::kNowhere;
        const size_t start = tookPart ? engine_.Start(group) : engine_.End(0);
        const size_t end = tookPart ? std::max(engine_.End(group), start) : start;
        AppendOrThrow(matches, scRegExMatch{static_cast<uint32_t>(start), TextOf(text + start, end - start)});
    }
}

// Calls visit with the subject of each match, the length of the text before the match, and the match. Each
// search has the text after the last match as its whole subject.
template <class Visit>
clsRegEx::Rest clsRegEx::ForEachMatch(const String& subject, Visit visit) {
    clsMatchBudget budget;
    clsRegExMatchList matches;
    const auto length = static_cast<size_t>(subject.Length());
    size_t position = 0;
    while (position < length) {
        const wchar_t* const work = subject.Text() + position;
        if (!MatchUnits(work, length - position, &matches, budget)) break;
        const scRegExMatch& whole = matches.get(0);
        const size_t end = whole.position + static_cast<size_t>(whole.text.Length());
        visit(work, whole.position, matches);
        if (end == 0) return {position, true};
        position += end;
    }
    return {position, false};
}

String clsRegEx::GSub(const String& subject, IclsRegExGSubCB& callback) {
    // The callback may change the subject.
    const String held(subject); // NOLINT(performance-unnecessary-copy-initialization)
    String result;
    const Rest rest =
        ForEachMatch(held, [&](const wchar_t* work, size_t front, const clsRegExMatchList& matches) {
            const String replacement = callback.Replace(matches.get(0).text, matches);
            result.Append(work, static_cast<int64_t>(front));
            result.Append(replacement);
        });
    const auto position = static_cast<int64_t>(rest.position);
    if (!rest.isAtEmptyMatch) result.Append(held.Text() + position, held.Length() - position);
    return result;
}

String clsRegEx::GSub(const String& subject, const String& replacement) {
    clsTemplateFiller filler(replacement);
    return GSub(subject, filler);
}

WCValSList<String> clsRegEx::SplitInto(const String& subject, bool withGroups) {
    WCValSList<String> pieces;
    const Rest rest =
        ForEachMatch(subject, [&](const wchar_t* work, size_t front, const clsRegExMatchList& matches) {
            AppendOrThrow(pieces, TextOf(work, front));
            if (!withGroups) return;
            WCValConstSListIter<scRegExMatch> group(matches);
            for (++group; ++group;) AppendOrThrow(pieces, String(group.current().text));
        });
    AppendOrThrow(pieces, TextOf(subject.Text() + rest.position,
                                 static_cast<size_t>(subject.Length()) - rest.position));
    return pieces;
}

WCValSList<String> clsRegEx::Split(const String& subject) { return SplitInto(subject, false); }

WCValSList<String> clsRegEx::SplitGroups(const String& subject) { return SplitInto(subject, true); }

} // namespace vxut
