// A stack on a list.
#pragma once

#include "containers/list.h"

namespace vxut {

// Pushes and pops elements at the head of the list C.
template <class T, class C = WCValSList<T>>
class WCStack : public C {
public:
    using C::C;

    // Returns false if there is no memory.
    bool push(const T& element) { return this->insert(element); }
    bool push(T&& element) { return this->insert(std::move(element)); }

    // Removes the top element and returns it. Returns a default-constructed element if the stack is empty.
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
