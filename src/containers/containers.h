// The containers of the library: lists, stacks, vectors, ordered sets and dictionaries.
//
// Containers are values that own copies of their elements; the pointer forms do not own what their elements
// point to. They are not thread-safe: whoever shares one guards it. Nodes are allocated by the general
// allocator unless the container was constructed with an allocator pair.
//
// An operation that runs out of memory returns false or null, or throws std::bad_alloc where there is no such
// result. An operation that fails, or in which the copy of an element throws, leaves its container as it was.
#pragma once

#include "containers/list.h"
#include "containers/skip_list.h"
#include "containers/stack.h"
#include "containers/vector.h"
