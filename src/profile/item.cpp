#include "profile/item.h"

#include "profile/item_list.h"
#include "profile/item_pool.h"

namespace vxut {

clsItem::clsItem() noexcept = default;
clsItem::~clsItem() = default;

void clsItemGiver::operator()(clsItem* item) const noexcept { ItemPool().Give(item); }

} // namespace vxut
