#include "profile/list_builder.h"

namespace vxut {

clsListBuilder::~clsListBuilder() {
    while (current_ != &target_) DetachCurrent();
}

clsGenericAutoDelete<clsItemList> clsListBuilder::DetachCurrent() noexcept {
    clsGenericAutoDelete<clsItemList> list(current_);
    current_ = list->Parent();
    return list;
}

void clsListBuilder::OpenList(std::wstring_view name) {
    current_ = std::make_unique<clsItemList>(name, current_).release();
}

bool clsListBuilder::CloseList() {
    if (current_ == &target_) return false;
    clsGenericAutoDelete<clsItemList> list = DetachCurrent();
    current_->Adopt(std::move(list));
    return true;
}

void clsListBuilder::CloseAll() {
    while (CloseList()) continue;
}

} // namespace vxut
