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
        T element(std::move(this->get(0)));
        this->remove(0);
        return element;
    }

    T& top() { return this->get(0); }
    const T& top() const { return this->get(0); }
};

} // namespace vxut
