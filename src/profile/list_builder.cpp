#include "profile/list_builder.h"

namespace vxut {

clsListBuilder::~clsListBuilder() {
    while (current_ != &target_) DetachCurrent();
}

clsAutoGiveItem clsListBuilder::DetachCurrent() noexcept {
    clsAutoGiveItem entry(current_->Owner());
    current_ = current_->Parent();
    return entry;
}

void clsListBuilder::OpenList(std::wstring_view name) {
    clsAutoGiveItem entry = clsItemList::NewEntry(name);
    entry->SetParent(current_);
    current_ = entry.release()->Sublist();
}

bool clsListBuilder::CloseList() noexcept {
    if (current_ == &target_) return false;
    clsAutoGiveItem entry = DetachCurrent();
    current_->Append(std::move(entry));
    return true;
}

void clsListBuilder::CloseAll() noexcept {
    while (CloseList()) continue;
}

} // namespace vxut
