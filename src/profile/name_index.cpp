#include "profile/name_index.h"

#include <windows.h>
#include <x86intrin.h>

#include <cstring>
#include <new>

namespace vxut {
namespace {

constexpr size_t kMinCapacity = 64;

// At most three quarters of the slots are in use.
constexpr size_t MostEntries(size_t capacity) { return capacity / 4 * 3; }

uint64_t Mix(uint64_t a, uint64_t b) noexcept {
    unsigned long long high = 0;
    const unsigned long long low = _umul128(a, b, &high);
    return low ^ high;
}

// Differs from process to process, so that no file can be made whose names all hash alike.
uint64_t Seed() noexcept {
    static const uint64_t seed = [] {
        LARGE_INTEGER counter{};
        QueryPerformanceCounter(&counter);
        const auto address = reinterpret_cast<uintptr_t>(&counter);
        return Mix(__rdtsc() ^ 0x9E3779B97F4A7C15, static_cast<uint64_t>(counter.QuadPart) ^ address) |
               static_cast<uint64_t>(GetCurrentProcessId()) << 32;
    }();
    return seed;
}

uint32_t HashOf(EntryKind kind, std::wstring_view name) noexcept {
    constexpr uint64_t kMultiplier = 0xD6E8FEB86659FD93;
    const uint64_t seed = Seed();
    uint64_t hash = Mix(seed ^ name.size(), kMultiplier + static_cast<uint64_t>(kind) * 2);
    const auto* at = reinterpret_cast<const char*>(name.data());
    for (size_t left = name.size() * sizeof(wchar_t); left > 0;) {
        uint64_t word = 0;
        const size_t bytes = left < sizeof(word) ? left : sizeof(word);
        std::memcpy(&word, at, bytes);
        hash = Mix(hash ^ word, seed ^ kMultiplier);
        at += bytes;
        left -= bytes;
    }
    return static_cast<uint32_t>(hash ^ hash >> 32);
}

} // namespace

clsAutoDeleteBytes<clsNameIndex::scSlot> clsNameIndex::MakeSlots(size_t capacity) noexcept {
    return clsAutoDeleteBytes<scSlot>(new (std::nothrow) scSlot[capacity]());
}

clsGenericAutoDelete<clsNameIndex> clsNameIndex::Make(size_t entries) noexcept {
    size_t capacity = kMinCapacity;
    while (MostEntries(capacity) < entries) capacity *= 2;
    auto slots = MakeSlots(capacity);
    if (!slots) return nullptr;
    return clsGenericAutoDelete<clsNameIndex>(new (std::nothrow) clsNameIndex(std::move(slots), capacity));
}

clsNameIndex::scSlot& clsNameIndex::SlotOf(EntryKind kind, std::wstring_view name,
                                           uint32_t hash) const noexcept {
    for (size_t at = hash & mask_;; at = (at + 1) & mask_) {
        scSlot& slot = slots_[at];
        if (!slot.item) return slot;
        if (slot.hash == hash && slot.item->Kind() == kind && slot.item->Name() == name) return slot;
    }
}

clsItem* clsNameIndex::Find(EntryKind kind, std::wstring_view name) const noexcept {
    return SlotOf(kind, name, HashOf(kind, name)).item;
}

bool clsNameIndex::Add(clsItem& item) noexcept {
    if (used_ >= MostEntries(Capacity()) && !Grow()) return false;
    const EntryKind kind = item.Kind();
    const uint32_t hash = HashOf(kind, item.Name());
    scSlot& slot = SlotOf(kind, item.Name(), hash);
    if (slot.item) return true;
    slot = {&item, hash};
    ++used_;
    return true;
}

bool clsNameIndex::Grow() noexcept {
    const size_t capacity = Capacity() * 2;
    auto larger = MakeSlots(capacity);
    if (!larger) return false;
    for (size_t i = 0; i < Capacity(); ++i) {
        if (!slots_[i].item) continue;
        size_t at = slots_[i].hash & (capacity - 1);
        while (larger[at].item) at = (at + 1) & (capacity - 1);
        larger[at] = slots_[i];
    }
    slots_ = std::move(larger);
    mask_ = capacity - 1;
    return true;
}

// Closes the gap, because a search ends at the first free slot: an entry behind it moves up unless the place
// where its search begins lies between the gap and itself.
bool clsNameIndex::Remove(EntryKind kind, std::wstring_view name) noexcept {
    scSlot* gap = &SlotOf(kind, name, HashOf(kind, name));
    if (!gap->item) return false;
    for (auto at = static_cast<size_t>(gap - slots_.get());;) {
        at = (at + 1) & mask_;
        scSlot& slot = slots_[at];
        if (!slot.item) break;
        const auto distance = [&](size_t from) { return (at - from) & mask_; };
        if (distance(slot.hash & mask_) < distance(static_cast<size_t>(gap - slots_.get()))) continue;
        *gap = slot;
        gap = &slot;
    }
    *gap = {};
    --used_;
    return true;
}

} // namespace vxut
