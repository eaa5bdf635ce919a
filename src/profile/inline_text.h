// A zero-terminated text with room in place for a short one; a longer one takes a heap buffer.
#pragma once

#include "base/owners.h"

#include <cstdint>
#include <cwchar>
#include <memory>
#include <string_view>

namespace vxut {

template <uint64_t kInline>
class clsInlineText {
public:
    clsInlineText() noexcept { inline_[0] = 0; }
    explicit clsInlineText(std::wstring_view text) : clsInlineText() { Assign(text); }
    clsInlineText(const clsInlineText&) = delete;
    clsInlineText& operator=(const clsInlineText&) = delete;

    const wchar_t* Text() const noexcept { return heap_ ? heap_.get() : inline_; }
    wchar_t* Text() noexcept { return heap_ ? heap_.get() : inline_; }
    uint64_t Length() const noexcept { return length_; }
    std::wstring_view View() const noexcept { return {Text(), length_}; }

    // The new text may be a piece of the old one.
    void Assign(std::wstring_view text) {
        if (text.size() > capacity_) Grow(text.size());
        if (!text.empty()) wmemmove(Text(), text.data(), text.size());
        Text()[text.size()] = 0;
        length_ = text.size();
    }

    // Back to the empty text in place.
    void Clear() noexcept {
        heap_.reset();
        capacity_ = kInline;
        length_ = 0;
        inline_[0] = 0;
    }

private:
    void Grow(uint64_t length) {
        heap_ = std::make_unique_for_overwrite<wchar_t[]>(length + 1);
        capacity_ = length;
    }

    clsAutoDeleteBytes<wchar_t> heap_;
    uint64_t capacity_ = kInline;
    uint64_t length_ = 0;
    wchar_t inline_[kInline + 1];
};

} // namespace vxut
