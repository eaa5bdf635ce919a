// The time column of the debug line.
#pragma once

#include "base/line_buffer.h"

#include <cstdint>

namespace vxut {

// Immutable, so for use by all threads.
class clsLineClock {
public:
    enum class Form { kLocalTime, kPerformanceCounter };

    // With the performance counter, the time is counted from here on.
    explicit clsLineClock(Form form) noexcept;

    // The form that the user's setting selects; the local time if there is no performance counter. Reads the
    // registry.
    static Form ConfiguredForm();

    // Appends "hh:mm:ss.mmm" of the local time, or "mm:ss.mmm" since the start.
    void AppendTime(clsLineBuffer& line) const noexcept;

private:
    Form form_;
    int64_t start_ = 0;
    int64_t frequency_ = 1;
};

} // namespace vxut
