// Regular expressions on String values: match, substitute, split.
//
// Patterns and subjects are sequences of 16-bit units of any value, zeros included; offsets are in units.
//
// Failure: nothing is returned as an error. A faulty pattern, and a search that needs too many steps, too
// much memory or too much processor time, count as no match and write a line to the debug channel. A pattern
// that failed to compile is compiled again, and reported again, at each use. A lack of memory throws
// std::bad_alloc and leaves the object usable.
//
// Threads: an object holds the result of its last match and serves one thread at a time.
#pragma once

#include "containers/list.h"
#include "text/regex_engine.h"
#include "text/string.h"

#include <cstdint>

namespace vxut {

class clsUnitBuffer;

enum RegExOptions : uint32_t {
    kRegExCaseless = 1,
    kRegExMultiLine = 2,
    kRegExDotAll = 4,
    kRegExExtended = 8,
    kRegExAnchored = 0x10,
    kRegExDollarEndOnly = 0x20,
    kRegExExtra = 0x40, // unknown escapes are faults; without it they mean the letter itself
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

// Returns the replacement of one match. Positions count from where the search for this match began. The
// callback may use the clsRegEx and change the subject.
struct IclsRegExGSubCB {
    virtual String Replace(const String& match, const clsRegExMatchList& matches) = 0;
    virtual ~IclsRegExGSubCB() = default;
};

class clsRegEx {
public:
    // The pattern is compiled at its first use. Options are RegExOptions.
    explicit clsRegEx(const String& pattern, uint32_t options = 0) : pattern_(pattern), options_(options) {}
    clsRegEx(const clsRegEx&) = delete;
    clsRegEx& operator=(const clsRegEx&) = delete;

    // Replaces the pattern. Returns false if it is faulty; ErrorText() says why.
    bool Compile(const String& pattern, uint32_t options);

    // Searches for the first match and lists its groups. Without a match the list is unchanged.
    bool Match(const String& subject, clsRegExMatchList* matches = nullptr);
    bool Match(const wchar_t* subject, clsRegExMatchList* matches = nullptr);
    // The same for one search of several that share their time.
    bool Match(const String& subject, clsRegExMatchList* matches, clsMatchBudget& budget);

    // Return the subject with all matches replaced. Each search sees only the text after the last match, as
    // if that were the whole subject: "^" and look-behind do not reach past it. A match that is empty where
    // its search began ends the work, and the rest of the subject is dropped.
    //
    // In the template, "\0" to "\9" are groups, and two backslashes are copied as two. A number without a
    // group ends the template there and is reported.
    String GSub(const String& subject, const String& replacement);
    String GSub(const String& subject, IclsRegExGSubCB& callback);

    // Returns the pieces between the matches; the text after the last match is a piece even if it is empty.
    WCValSList<String> Split(const String& subject);
    // The same; each piece is followed by the groups of the match after it.
    WCValSList<String> SplitGroups(const String& subject);

    // The last fault of the pattern; empty if there is none.
    const String& ErrorText() const noexcept { return errorText_; }

private:
    struct Rest;

    bool Ensure();
    struct Group;

    bool MatchUnits(const wchar_t* text, size_t length, clsMatchBudget& budget);
    Group GroupOfMatch(uint32_t group) const;
    void ListGroups(const wchar_t* text, clsRegExMatchList& matches) const;
    void AppendTemplate(const String& replacement, const wchar_t* text, clsUnitBuffer& result) const;
    bool AppendGroup(uint32_t number, const wchar_t* text, clsUnitBuffer& result) const;
    template <class Replace>
    String Substitute(const String& subject, Replace replace);
    template <class Visit>
    Rest ForEachMatch(const String& subject, Visit visit);
    WCValSList<String> SplitInto(const String& subject, bool withGroups);

    String pattern_;
    uint32_t options_;
    String errorText_;
    clsRegExEngine engine_;
};

} // namespace vxut
