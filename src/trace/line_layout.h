// Which arguments a format takes, without reading them.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vxut {

// Each argument takes a slot of 8 bytes in a list of arguments.
struct scLineLayout {
    static constexpr size_t kMostSlots = 12;
    enum Kind : uint8_t { kNumber, kWideText, kNarrowText };
    static constexpr int16_t kNoPrecision = -1;
    static constexpr int16_t kPrecisionBefore = -2; // is the slot before

    uint8_t slots = 0;
    bool isSupported = true; // else the line has to be formatted while its arguments are valid
    bool hasText = false;
    Kind kinds[kMostSlots] = {};
    int16_t precisions[kMostSlots] = {}; // of texts
};

// Reads a format of the wide printf. The format has to be readable.
scLineLayout LayoutOf(const wchar_t* format) noexcept;

} // namespace vxut
