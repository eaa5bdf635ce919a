// What a fuzz target is: a reader of foreign bytes with good inputs to start from.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace fuzz {

using Input = std::vector<uint8_t>;

struct Target {
    const char* name;
    // Must come back, within its limits, whatever the bytes are.
    void (*run)(const uint8_t* data, size_t size);
    std::vector<Input> seeds;
    std::vector<Input> tokens; // pieces that mean something to the reader
};

// All targets, in the order in which they run.
const std::vector<Target>& Targets();

// Inputs from texts: narrow as they stand, wide ones in UTF-16 with a byte order mark.
Input Bytes(const std::string& text);
Input Utf16(const std::wstring& text);

} // namespace fuzz
