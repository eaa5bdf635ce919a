// Builds a long text from many pieces in time proportional to its length.
#pragma once

#include "text/string.h"

#include <algorithm>
#include <cwchar>

namespace vxut {

class clsTextBuilder {
public:
    // Takes the units as they are, zeros included.
    void Append(const wchar_t* text, int64_t count) {
        if (count <= 0) return;
        wchar_t* const buffer = Reserve(count);
        std::wmemcpy(buffer + length_, text, static_cast<size_t>(count));
        length_ += count;
    }
    void Append(const String& text) { Append(text.Text(), text.Length()); }

    // Gives the text up and starts anew.
    String Take() {
        text_.SetLength(length_);
        length_ = capacity_ = 0;
        buffer_ = nullptr;
        return std::move(text_);
    }

private:
    wchar_t* Reserve(int64_t count) {
        if (length_ + count > capacity_) {
            text_.SetLength(length_); // what GetBuffer() keeps
            const int64_t grown = std::max(length_ + count, capacity_ * 2);
            buffer_ = text_.GetBuffer(grown);
            capacity_ = grown;
        }
        return buffer_;
    }

    String text_;
    wchar_t* buffer_ = nullptr;
    int64_t length_ = 0;
    int64_t capacity_ = 0;
};

} // namespace vxut
