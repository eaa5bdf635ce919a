// A fuzz target: a reader of untrusted bytes, with valid inputs to start from.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace fuzz {

using Input = std::vector<uint8_t>;

struct Target {
    const char* name;
    // Must return within its limits for any bytes.
    void (*run)(const uint8_t* data, size_t size);
    std::vector<Input> seeds;
    std::vector<Input> tokens; // that have a meaning to the reader
};

// All targets in the order in which they run.
const std::vector<Target>& Targets();

// Inputs from texts: narrow ones unchanged, wide ones in UTF-16 with a byte order mark.
Input Bytes(const std::string& text);
Input Utf16(const std::wstring& text);

} // namespace fuzz
