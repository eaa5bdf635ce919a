// How the objects of tracked heaps lie in memory. The word in front of an object tells its form.
//
// A plain object has that word only. A debug object has a header, and a fence directly behind it.
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

// The header of a debug object, which begins directly behind the last field, where the struct has padding:
// headers are copied with their own length.
struct scDebugHeader {
    uint32_t headMagic;
    HANDLE heap;   // the system's
    uint32_t time; // GetTickCount
    clsStackSnapshot* stackSnapshot;
    uint32_t userTag;
    int32_t size; // of the object, as given
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

// Sizes of objects are 32-bit numbers without a sign, whatever a host takes them for. With what surrounds an
// object they do not wrap.
constexpr size_t ObjectBytes(int32_t size) { return static_cast<uint32_t>(size); }
static_assert(sizeof(size_t) > sizeof(int32_t));

// The counters of heaps may pass the end of their range.
inline void AddWrapping(int32_t& counter, int32_t change) {
    counter = static_cast<int32_t>(static_cast<uint32_t>(counter) + static_cast<uint32_t>(change));
}
inline void SubtractWrapping(int32_t& counter, int32_t change) {
    counter = static_cast<int32_t>(static_cast<uint32_t>(counter) - static_cast<uint32_t>(change));
}

// An address at a distance from one that may be of nothing at all.
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

// The word in front of an object, 0 if it cannot be read.
uint32_t ReadMagic(const void* object);

// The header of a debug object. False if it cannot be read or does not begin like one.
bool ReadHeader(scDebugHeader& header, const scDebugHeader* block);

// Whether a debug object is whole. Reports what is wrong with it.
bool TestObject(const scDebugHeader* block);

// Writes the first bytes of a debug object and where it was allocated.
void WriteObjectDump(const scDebugHeader* block);

} // namespace vxut
