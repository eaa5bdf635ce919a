// Regular expressions on String values: match, substitute, split.
//
// A pattern is compiled at its first use. One object serves one thread at a time. Every fault of a pattern is
// reported on the debug channel and counts as no match, as does a subject on which matching would take too
// long.
#pragma once

#include "containers/list.h"
#include "text/regex_engine.h"
#include "text/string.h"

#include <cstdint>

namespace vxut {

enum RegExOptions : uint32_t {
    kRegExCaseless = 1,
    kRegExMultiLine = 2,
    kRegExDotAll = 4,
    kRegExExtended = 8,
    kRegExAnchored = 0x10,
    kRegExDollarEndOnly = 0x20,
    kRegExExtra = 0x40, // unknown escapes are faults; without it they stand for the letter itself
    kRegExNotBOL = 0x80,
    kRegExNotEOL = 0x100,
    kRegExUngreedy = 0x200,
    kRegExNotEmpty = 0x400,
};

struct scRegExMatch {
    uint32_t position = 0; // in units from the start of the subject
    String text;
};

// The groups of a match: the whole match, then each group of the pattern in number order. A group that took
// no part is an empty text at the end of the match.
using clsRegExMatchList = WCValSList<scRegExMatch>;

// Makes the replacement of one match. Positions count from where the search for this match began.
struct IclsRegExGSubCB {
    virtual String Replace(const String& match, const clsRegExMatchList& matches) = 0;
    virtual ~IclsRegExGSubCB() = default;
};

class clsRegEx {
public:
    explicit clsRegEx(const String& pattern, uint32_t options = 0) : pattern_(pattern), options_(options) {}
    clsRegEx(const clsRegEx&) = delete;
    clsRegEx& operator=(const clsRegEx&) = delete;

    bool Compile(const String& pattern, uint32_t options);

    // The list is left alone if there is no match.
    bool Match(const String& subject, clsRegExMatchList* matches = nullptr);
    bool Match(const wchar_t* subject, clsRegExMatchList* matches = nullptr);

    // Replaces all matches. Each search sees only what is left behind the last match, as if that were the
    // whole subject: "^" and look-behind do not look past it. A match that is empty where its search began
    // ends the work, and what is left is dropped.
    //
    // In the template, "\0" to "\9" stand for groups, and two backslashes for themselves. A number that the
    // pattern does not have ends the template there.
    String GSub(const String& subject, const String& replacement);
    String GSub(const String& subject, IclsRegExGSubCB& callback);

    // The pieces between the matches; what is left after the last match is a piece in any case.
    WCValSList<String> Split(const String& subject);
    // The same with each match's groups behind the piece in front of it.
    WCValSList<String> SplitGroups(const String& subject);

    // The last fault of the pattern; empty if it is good.
    const String& ErrorText() const noexcept { return errorText_; }

private:
    struct Rest;

    bool Ensure();
    bool MatchUnits(const wchar_t* text, size_t length, clsRegExMatchList* matches, clsMatchBudget& budget);
    void ListGroups(const wchar_t* text, clsRegExMatchList& matches) const;
    template <class Visit>
    Rest ForEachMatch(const String& subject, Visit visit);
    WCValSList<String> SplitInto(const String& subject, bool withGroups);

    String pattern_;
    uint32_t options_;
    String errorText_;
    clsRegExEngine engine_;
};

} // namespace vxut
