#include "profile/item_text.h"

#include "profile/item_pool.h"

#include <cwchar>
#include <utility>

namespace vxut {

// A block of the general allocator does not know how much it could hold: it is reused for shorter texts only.
bool clsItemText::HasRoomFor(size_t length) const noexcept {
    if (!block_) return length == 0;
    return block_->grains == 0 ? length <= block_->length
                               : BytesFor(length) <= block_->grains * clsSmallBlocks::kGrain;
}

void clsItemText::Put(std::wstring_view text) noexcept {
    if (!block_) return;
    if (!text.empty()) std::wmemmove(block_->Units(), text.data(), text.size());
    block_->Units()[text.size()] = 0;
    block_->length = text.size();
}

void clsItemText::Assign(std::wstring_view text) {
    if (HasRoomFor(text.size())) return Put(text);
    clsItemText larger;
    larger.block_ = ItemPool().TakeText(text.size());
    larger.Put(text);
    std::swap(block_, larger.block_);
}

void clsItemText::Clear() noexcept {
    if (block_) ItemPool().GiveText(std::exchange(block_, nullptr));
}

} // namespace vxut
