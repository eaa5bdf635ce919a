// Where a text is put together before it becomes a String of the right size.
#pragma once

#include "base/text_units.h"

#include <cstdint>
#include <memory>

namespace vxut {

// A text that grows at its end. Short ones need no memory.
class clsUnitBuffer {
public:
    clsUnitBuffer() noexcept = default;
    clsUnitBuffer(const clsUnitBuffer&) = delete;
    clsUnitBuffer& operator=(const clsUnitBuffer&) = delete;

    const wchar_t* Text() const noexcept { return text_; } // not terminated
    int64_t Length() const noexcept { return length_; }

    // Returns the place behind the text, where count units may be written. Throws std::bad_alloc.
    wchar_t* Reserve(int64_t count) {
        if (count > capacity_ - length_) Grow(count);
        return text_ + length_;
    }
    // Takes units that have been written there.
    void Extend(int64_t count) noexcept { length_ += count; }
    void Append(const wchar_t* text, int64_t count) {
        MoveBytes(Reserve(count), text, static_cast<size_t>(count) * sizeof *text);
        length_ += count;
    }
    // Precondition: the text is at least that long.
    void Cut(int64_t length) noexcept { length_ = length; }

private:
    static constexpr int64_t kLocalUnits = 128;

    void Grow(int64_t count);

    wchar_t* text_ = local_;
    int64_t length_ = 0;
    int64_t capacity_ = kLocalUnits;
    std::unique_ptr<wchar_t[]> allocated_;
    wchar_t local_[kLocalUnits];
};

} // namespace vxut
