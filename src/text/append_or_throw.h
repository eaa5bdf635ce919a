// Appending to lists that are results.
#pragma once

#include <new>
#include <utility>

namespace vxut {

// Appends an element; throws std::bad_alloc where the list itself reports a lack of memory by its result. A
// result that silently lacks an element would be wrong.
template <class List, class Element>
void AppendOrThrow(List& list, Element&& element) {
    if (!list.append(std::forward<Element>(element))) throw std::bad_alloc();
}

} // namespace vxut
