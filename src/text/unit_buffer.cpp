#include "text/unit_buffer.h"

#include <algorithm>
#include <utility>

namespace vxut {

void clsUnitBuffer::Grow(int64_t count) {
    const int64_t capacity = std::max(length_ + count, 2 * capacity_);
    std::unique_ptr<wchar_t[]> larger(new wchar_t[static_cast<size_t>(capacity)]);
    std::memcpy(larger.get(), text_, static_cast<size_t>(length_) * sizeof *text_);
    allocated_ = std::move(larger);
    text_ = allocated_.get();
    capacity_ = capacity;
}

} // namespace vxut
