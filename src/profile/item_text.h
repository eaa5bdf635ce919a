// The text of a name or a value.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vxut {

class clsItemPool;

// Owns a zero-terminated text in memory of the item pool; the empty text takes none. As small as a pointer,
// because a profile holds as many as it has names and values. Belongs to one thread at a time.
class clsItemText {
public:
    clsItemText() noexcept = default;
    explicit clsItemText(std::wstring_view text) { Assign(text); }
    ~clsItemText() { Clear(); }
    clsItemText(const clsItemText&) = delete;
    clsItemText& operator=(const clsItemText&) = delete;

    std::wstring_view View() const noexcept { return {Text(), Length()}; }
    const wchar_t* Text() const noexcept { return block_ ? block_->Units() : L""; }
    // Callers may change units, but not the length. Null if the text is empty.
    wchar_t* Units() noexcept { return block_ ? block_->Units() : nullptr; }
    size_t Length() const noexcept { return block_ ? static_cast<size_t>(block_->length) : 0; }

    // The new text may be a piece of the old one. Throws std::bad_alloc and then leaves the old text.
    void Assign(std::wstring_view text);
    void Clear() noexcept;

private:
    friend class clsItemPool;

    struct scBlock {
        uint64_t length : 56;
        uint64_t grains : 8; // the block's size in grains of the pool, 0 for one of the general allocator

        wchar_t* Units() noexcept { return reinterpret_cast<wchar_t*>(this + 1); }
    };
    static_assert(sizeof(scBlock) == 8);

    static size_t BytesFor(size_t length) noexcept {
        return sizeof(scBlock) + (length + 1) * sizeof(wchar_t);
    }
    bool HasRoomFor(size_t length) const noexcept;
    void Put(std::wstring_view text) noexcept;

    scBlock* block_ = nullptr;
};

} // namespace vxut
