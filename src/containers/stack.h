// Push and pop at the head of a list.
#pragma once

#include "containers/list.h"

namespace vxut {

template <class T, class C = WCValSList<T>>
class WCStack : public C {
public:
    using C::C;

    bool push(const T& element) { return this->insert(element); }
    bool push(T&& element) { return this->insert(std::move(element)); }

    // A default-made element from an empty stack.
    T pop() {
        if (this->isEmpty()) return T{};
        T element(std::move(*top()));
        this->remove(0);
        return element;
    }

    // The element that pop() would return; null if the stack is empty.
    T* top() noexcept { return this->find(0); }
};

} // namespace vxut
