#include "windowing/window_messages.h"

#include <new>

namespace vxut {

clsWindowMessages& clsWindowMessages::Instance() {
    static clsWindowMessages messages;
    return messages;
}

uint32_t clsWindowMessages::NumberOf(const IString& name) {
    const clsCriticalSectionScope scope(lock_);
    if (const uint32_t* const number = numbers_.find(name)) return *number;
    if (!numbers_.insert(name, next_)) throw std::bad_alloc();
    return next_++;
}

bool clsWindowMessages::FindName(uint32_t number, String& name) {
    const clsCriticalSectionScope scope(lock_);
    for (const auto& entry : numbers_) {
        if (entry.value != number) continue;
        name = entry.key();
        return true;
    }
    return false;
}

} // namespace vxut
