// The patterns of dates and times in a locale.
#pragma once

#include "locale/locale_date_info.h"
#include "text/regex.h"
#include "text/string.h"

#include <memory>

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

// The compiled patterns for a pair of separators. For one thread at a time.
class clsDatePatterns {
public:
    explicit clsDatePatterns(const clsLocaleDateInfo& info);

    // Patterns for a locale, those of an earlier call if its separators are the same. Keep() hands them back.
    static std::unique_ptr<clsDatePatterns> For(const clsLocaleDateInfo& info);
    static void Keep(std::unique_ptr<clsDatePatterns> patterns);

    // Returns the form of a text and its groups, or kNone.
    DateForm Match(const String& text, clsRegExMatchList& groups);

private:
    bool Serves(const clsLocaleDateInfo& info) const;

    String dateSeparator_;
    String timeSeparator_;
    clsRegEx locale24Hours_;
    clsRegEx locale12Hours_;
    clsRegEx iso24Hours_;
};

} // namespace vxut
