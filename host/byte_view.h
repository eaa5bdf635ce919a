// Numbers and pieces of foreign bytes, by their offset. Nothing is read beyond the end.
#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>

namespace vlm {

class ByteView {
public:
    ByteView() = default;
    explicit ByteView(std::string_view bytes) : bytes_(bytes) {}

    uint64_t Size() const { return bytes_.size(); }
    bool Has(uint64_t offset, uint64_t count) const { return offset <= Size() && count <= Size() - offset; }
    // Returns false, with the value unchanged, if it is not there in full.
    template <class Value>
    bool Read(uint64_t offset, Value& value) const {
        if (!Has(offset, sizeof value)) return false;
        std::memcpy(&value, bytes_.data() + offset, sizeof value);
        return true;
    }
    // The piece, or what there is of it.
    std::string_view Piece(uint64_t offset, uint64_t count) const {
        return offset > Size() ? std::string_view() : bytes_.substr(offset, count);
    }

private:
    std::string_view bytes_;
};

} // namespace vlm
