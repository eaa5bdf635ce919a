// A list of a profile: its entries in the order in which they were added.
#pragma once

#include "containers/list.h"
#include "profile/inline_text.h"
#include "profile/item.h"

#include <string_view>

namespace vxut {

// Owns its items and, through them, the whole subtree. Names need not be unique.
class clsItemList : public WCValSList<clsItem*> {
public:
    // A name that begins with "[" loses its first and its last unit, whatever the last one is: the text
    // reader and callers count on it.
    explicit clsItemList(std::wstring_view name, clsItemList* parent = nullptr);
    ~clsItemList() override { Empty(); }
    clsItemList(const clsItemList&) = delete;
    clsItemList& operator=(const clsItemList&) = delete;

    std::wstring_view Name() const noexcept { return name_.View(); }
    const wchar_t* NameText() const noexcept { return name_.Text(); }
    clsItemList* Parent() const noexcept { return parent_; }

    // These append and throw when memory is short.
    clsItem& AppendItem(std::wstring_view name, std::wstring_view value);
    clsItemList& AppendList(std::wstring_view name);
    clsItemList& Adopt(clsGenericAutoDelete<clsItemList> list);
    // Appends all entries of another list and leaves it empty.
    void TakeEntries(clsItemList& other);

    // Replaces the value of the first plain item of the name, or appends one.
    void SetItem(std::wstring_view name, std::wstring_view value);

    // The first match in list order, or null.
    clsItem* FindItem(std::wstring_view name) const noexcept;
    clsItemList* FindList(std::wstring_view name) const noexcept;

    // Removes and frees all entries for which match(const clsItem&) holds.
    template <class Match>
    void RemoveEntries(Match match) {
        removeIf([&](clsItem* item) {
            if (!match(static_cast<const clsItem&>(*item))) return false;
            GiveItem(item);
            return true;
        });
    }
    // Frees the whole subtree, however deep it is.
    void Empty() noexcept;

private:
    static void GiveItem(clsItem* item) noexcept;
    clsItem& AppendNew(std::wstring_view name, std::wstring_view value,
                       clsGenericAutoDelete<clsItemList> list);

    clsInlineText<16> name_;
    clsItemList* parent_;
};

} // namespace vxut
