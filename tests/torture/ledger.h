// What the library has taken from the system and not returned. For all threads.
#pragma once

#include <cstddef>
#include <string>

namespace torture {

enum class Kind { kBlock, kHandle, kKey, kView, kSearch };

// The function is the one that was called, a text that lives as long as the process. Null and invalid handles
// are ignored. The owner of a block is the heap that it belongs to, if that may end before the block is
// freed.
void Take(Kind kind, const void* resource, const char* function, const void* owner = nullptr);
void Return(Kind kind, const void* resource);
// Returns all blocks of a heap.
void ReturnAllOf(const void* owner);

size_t LiveCount();
// Marks what is live now; LiveSinceMark() lists what was taken since and is still there: "3 malloc, 1
// CreateFileW".
void Mark();
std::string LiveSinceMark();

} // namespace torture
