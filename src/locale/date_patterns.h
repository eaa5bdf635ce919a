// The patterns of dates and times in a locale.
#pragma once

#include "locale/locale_date_info.h"
#include "text/regex.h"
#include "text/string.h"

namespace vxut {

// The forms of a date, in the order in which they are tried.
enum class DateForm { kLocale24Hours, kLocale12Hours, kIso24Hours, kNone };

// The groups of each form: three numbers of the date, hour, minute, second and, with 12 hours, "AM" or "PM".
enum DateGroup {
    kDateFirst = 1,
    kDateSecond,
    kDateThird,
    kDateHour,
    kDateMinute,
    kDateSecondOfTime,
    kDateHalf
};

// Returns the form of a text in a locale and its groups, or kNone. The compiled patterns are kept for the
// next call, which uses them if the separators are the same. May be called on any thread.
DateForm MatchDate(const clsLocaleDateInfo& info, const String& text, clsRegExMatchList& groups);

// The compiled patterns for a pair of separators. For one thread at a time.
class clsDatePatterns {
public:
    explicit clsDatePatterns(const clsLocaleDateInfo& info);

    // Whether the patterns are those of the locale.
    bool Serve(const clsLocaleDateInfo& info) const;
    DateForm Match(const String& text, clsRegExMatchList& groups);

private:
    String dateSeparator_;
    String timeSeparator_;
    clsRegEx locale24Hours_;
    clsRegEx locale12Hours_;
    clsRegEx iso24Hours_;
};

} // namespace vxut
