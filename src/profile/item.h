// One entry of a profile list: a name with a value, or a name with a list.
#pragma once

#include "base/owners.h"
#include "profile/inline_text.h"

#include <cstdint>
#include <string_view>

namespace vxut {

class clsItemList;
struct clsItemBlock;

// Items live in the slots of a pool block and are handed out by it; a slot is used for many items in turn.
class clsItem {
public:
    clsItem() noexcept;
    ~clsItem();
    clsItem(const clsItem&) = delete;
    clsItem& operator=(const clsItem&) = delete;

    // Whether an item is a list is decided by its sublist and nothing else.
    bool IsPlain() const noexcept { return !sublist_; }
    clsItemList* Sublist() const noexcept { return sublist_.get(); }
    clsItemList* Parent() const noexcept { return parent_; }
    void SetParent(clsItemList* parent) noexcept { parent_ = parent; }

    std::wstring_view Name() const noexcept { return name_.View(); }
    std::wstring_view Value() const noexcept { return value_.View(); }
    wchar_t* NameText() noexcept { return name_.Text(); }
    wchar_t* ValueText() noexcept { return value_.Text(); }
    const wchar_t* NameText() const noexcept { return name_.Text(); }
    const wchar_t* ValueText() const noexcept { return value_.Text(); }
    void SetName(std::wstring_view name) { name_.Assign(name); }
    void SetValue(std::wstring_view value) { value_.Assign(value); }

    // Makes this a list item: its name is the list's, its value empty.
    void Adopt(clsGenericAutoDelete<clsItemList> list);

    // Frees texts and subtree, so that the slot can serve again.
    void Clear() noexcept;

    clsItemBlock* Block() const noexcept { return block_; }
    void SetBlock(clsItemBlock* block) noexcept { block_ = block; }

private:
    clsInlineText<20> name_;
    clsInlineText<32> value_;
    clsGenericAutoDelete<clsItemList> sublist_;
    clsItemList* parent_ = nullptr;
    clsItemBlock* block_ = nullptr;
};

} // namespace vxut
