// What the date parser needs to know about a locale.
#pragma once

#include "text/string.h"

#include <cstdint>

namespace vxut {

// The order of the fields of a short date.
enum DateFieldOrder : int32_t { kDayMonthYear = 0, kMonthDayYear = 1, kYearMonthDay = 2 };

// The answers of the system for one locale. A field that the system does not know, or whose text is too long,
// has a common default.
class clsLocaleDateInfo {
public:
    explicit clsLocaleDateInfo(uint32_t lcid);

    // The block of the user's default locale, built at the first call and kept as it is: changed settings are
    // seen by new processes only. May be called on any thread.
    static const clsLocaleDateInfo& OfUser();

    uint32_t Lcid() const noexcept { return lcid_; }
    DateFieldOrder FieldOrder() const noexcept { return fieldOrder_; }
    const String& DateSeparator() const noexcept { return dateSeparator_; }
    const String& TimeSeparator() const noexcept { return timeSeparator_; }

private:
    uint32_t lcid_;
    DateFieldOrder fieldOrder_;
    String dateSeparator_;
    String timeSeparator_;
};

} // namespace vxut
