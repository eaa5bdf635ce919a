// The memory layout of the objects of tracked heaps. The 32-bit word before an object identifies its form.
//
// A plain object has that word only. A debug object has a header before it and a fence directly after it.
// Hosts pass pointers to objects, which may be invalid; the functions below accept any pointer.
#pragma once

#include "heap/stack_snapshot.h"

#include <windows.h>

#include <cstddef>
#include <cstdint>

namespace vxut {

constexpr uint32_t kPlainMagic = 0xFAAFFAAF;
constexpr uint32_t kDebugMagic = 0xAFFEAFFE;
constexpr uint32_t kHeadMagic = 0xC0FFEEEE;
constexpr uint32_t kFence = 0xE5E55E5E;

constexpr int kUninitialisedFill = 0xF5;
constexpr int kFreedFill = 0xCC;

// The header of a debug object. The object begins directly after the last field, where the struct has
// padding, so headers are copied with kDebugHeaderBytes, not with the size of the struct.
struct scDebugHeader {
    uint32_t headMagic;
    HANDLE heap;   // the system's handle
    uint32_t time; // GetTickCount() at the allocation
    clsStackSnapshot* stackSnapshot;
    uint32_t userTag;
    int32_t size; // of the object, as requested
    uint32_t objectMagic;
};

constexpr size_t kPlainOverhead = sizeof kPlainMagic;
constexpr size_t kDebugHeaderBytes = offsetof(scDebugHeader, objectMagic) + sizeof kDebugMagic;
constexpr size_t kDebugOverhead = kDebugHeaderBytes + sizeof kFence;

static_assert(offsetof(scDebugHeader, headMagic) == kDebugHeaderBytes - 44);
static_assert(offsetof(scDebugHeader, heap) == kDebugHeaderBytes - 36);
static_assert(offsetof(scDebugHeader, time) == kDebugHeaderBytes - 28);
static_assert(offsetof(scDebugHeader, stackSnapshot) == kDebugHeaderBytes - 20);
static_assert(offsetof(scDebugHeader, userTag) == kDebugHeaderBytes - 12);
static_assert(offsetof(scDebugHeader, size) == kDebugHeaderBytes - 8);
static_assert(offsetof(scDebugHeader, objectMagic) == kDebugHeaderBytes - 4);
static_assert(kDebugOverhead == 48);

// The size of an object as an unsigned number. Adding the overhead does not wrap.
constexpr size_t ObjectBytes(int32_t size) { return static_cast<uint32_t>(size); }
static_assert(sizeof(size_t) > sizeof(int32_t));

// The counters of heaps wrap at the end of their range.
inline void AddWrapping(int32_t& counter, int32_t change) {
    counter = static_cast<int32_t>(static_cast<uint32_t>(counter) + static_cast<uint32_t>(change));
}
inline void SubtractWrapping(int32_t& counter, int32_t change) {
    counter = static_cast<int32_t>(static_cast<uint32_t>(counter) - static_cast<uint32_t>(change));
}

// Address arithmetic on pointers that may lead anywhere.
inline void* AddressAt(const void* address, ptrdiff_t distance) {
    return reinterpret_cast<void*>(reinterpret_cast<uintptr_t>(address) + static_cast<uintptr_t>(distance));
}

inline void* PlainBlockOf(const void* object) {
    return AddressAt(object, -static_cast<ptrdiff_t>(kPlainOverhead));
}
inline scDebugHeader* DebugBlockOf(const void* object) {
    return static_cast<scDebugHeader*>(AddressAt(object, -static_cast<ptrdiff_t>(kDebugHeaderBytes)));
}
inline void* ObjectOf(const scDebugHeader* block) { return AddressAt(block, kDebugHeaderBytes); }
inline void* FenceOf(const scDebugHeader* block, int32_t size) {
    return AddressAt(ObjectOf(block), static_cast<ptrdiff_t>(ObjectBytes(size)));
}

// Returns the word before an object, or 0 if it cannot be read.
uint32_t ReadMagic(const void* object);

// Copies the header of a debug object. Returns false if it cannot be read or does not begin with kHeadMagic.
bool ReadHeader(scDebugHeader& header, const scDebugHeader* block);

// Returns whether a debug object is undamaged, and reports damage.
bool TestObject(const scDebugHeader* block);

// Reports the first bytes of a debug object and the stack of its allocation, as far as they can be read.
void WriteObjectDump(const scDebugHeader* block);

} // namespace vxut
