// The library's containers: lists, stacks, vectors, ordered sets and dictionaries.
//
// Containers are values that own copies of their elements; the pointer forms do not own what their elements
// point at. They are not thread-safe. Nodes come from the general allocator unless a container was made with
// an allocator pair. Running out of memory is a false or null result, and std::bad_alloc where there is no
// result; an element whose copy throws leaves its container as it was.
#pragma once

#include "containers/list.h"
#include "containers/skip_list.h"
#include "containers/stack.h"
#include "containers/vector.h"
