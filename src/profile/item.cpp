#include "profile/item.h"

#include "profile/item_list.h"

namespace vxut {

clsItem::clsItem() noexcept = default;
clsItem::~clsItem() = default;

void clsItem::Adopt(clsGenericAutoDelete<clsItemList> list) {
    SetName(list->Name());
    sublist_ = std::move(list);
}

void clsItem::Clear() noexcept {
    sublist_.reset();
    parent_ = nullptr;
    name_.Clear();
    value_.Clear();
}

} // namespace vxut
