#include "trace/line_ring.h"

#include "base/critical_section.h"
#include "base/identity.h"
#include "base/line_buffer.h"
#include "base/shield.h"
#include "trace/line_layout.h"
#include "trace/thread_names.h"

#include <windows.h>

#include <x86intrin.h>
#include <algorithm>
#include <atomic>
#include <bit>
#include <cstdio>
#include <cstring>
#include <cwchar>
#include <memory>

namespace vxut {

namespace ring {
constinit uint8_t isOn = 0;
} // namespace ring

namespace {

constexpr size_t kSlotBytes = 512;
constexpr size_t kModuleUnits = 9;
constexpr size_t kMostTextUnits = 96; // of each text that is copied

// One line.
struct Slot {
    std::atomic<uint64_t> stamp; // the number of the line plus 1; 0 while the slot is written
    uint64_t time;               // of the processor's counter
    const wchar_t* format;       // null: the line is the text itself
    DWORD thread;
    int32_t indent;
    wchar_t module[kModuleUnits];
    uint64_t arguments[scLineLayout::kMostSlots];
    wchar_t texts[148];
};
static_assert(sizeof(Slot) <= kSlotBytes);
constexpr size_t kTextUnits = std::size(Slot().texts);

// The slots of all lines. Never freed while the library is there: a thread may be writing.
struct Ring {
    explicit Ring(uint32_t lines) : mask(lines - 1), slots(new Slot[lines]()) {}

    const uint32_t mask;
    const std::unique_ptr<Slot[]> slots;
    std::unique_ptr<Ring> retired; // a smaller one
};

// A point in time by both clocks.
struct Instant {
    uint64_t counter;
    uint64_t ticks; // of 100 ns, local time

    static Instant Now() {
        FILETIME system, local;
        GetSystemTimeAsFileTime(&system);
        FileTimeToLocalFileTime(&system, &local);
        return {__rdtsc(), ULARGE_INTEGER{{local.dwLowDateTime, local.dwHighDateTime}}.QuadPart};
    }
};

clsCriticalSection lock; // guards the making of rings
std::unique_ptr<Ring> owner;
constinit std::atomic<Ring*> current{nullptr};
constinit std::atomic<uint64_t> lineCount{0};
constinit std::atomic<uint64_t> firstLine{0}; // that belongs to the present memory
Instant start;

// Layouts of formats that lie in images, where they do not change. Two formats may share a place: the later
// one wins.
struct KnownFormat {
    std::atomic<const wchar_t*> format;
    scLineLayout layout;
};
constexpr size_t kKnownFormats = 512;
KnownFormat known[kKnownFormats];
clsCriticalSection knownLock; // for writing

bool IsInImage(const wchar_t* format) {
    MEMORY_BASIC_INFORMATION region;
    return VirtualQuery(format, &region, sizeof region) == sizeof region && region.Type == MEM_IMAGE &&
           (region.Protect & (PAGE_READONLY | PAGE_EXECUTE_READ)) != 0;
}

size_t PlaceOf(const wchar_t* format) {
    return (reinterpret_cast<uintptr_t>(format) * 0x9E3779B97F4A7C15u) >>
           (64 - std::countr_zero(kKnownFormats));
}

// Finds the layout of a constant format. A place is filled once, so that readers need no lock.
const scLineLayout* FindLayout(const wchar_t* format) {
    KnownFormat& place = known[PlaceOf(format)];
    const wchar_t* const there = place.format.load(std::memory_order_acquire);
    if (there == format) return &place.layout;
    if (there || !IsInImage(format)) return nullptr;
    const clsCriticalSectionTryScope scope(knownLock);
    if (!scope.HasEntered() || place.format.load(std::memory_order_relaxed)) return nullptr;
    place.layout = LayoutOf(format);
    place.format.store(format, std::memory_order_release);
    return &place.layout;
}

// Copies the texts among the arguments into the slot and makes the arguments point there.
class TextCopier {
public:
    TextCopier(Slot& slot, const scLineLayout& layout) : slot_(slot), layout_(layout) {}

    void CopyAll() {
        for (size_t i = 0; i < layout_.slots; ++i)
            if (layout_.kinds[i] != scLineLayout::kNumber) Copy(i);
    }

private:
    void Copy(size_t index) {
        uint64_t& argument = slot_.arguments[index];
        if (argument == 0) return;
        wchar_t* const target = slot_.texts + used_;
        const size_t most = std::min(MostUnits(index), std::min(kMostTextUnits, kTextUnits - used_ - 1));
        size_t units = 0;
        // NOLINTBEGIN(performance-no-int-to-ptr)
        if (layout_.kinds[index] == scLineLayout::kWideText) {
            const auto* text = reinterpret_cast<const wchar_t*>(argument);
            for (; units < most && text[units]; ++units) target[units] = text[units];
            target[units++] = 0;
        } else {
            const auto* text = reinterpret_cast<const char*>(argument);
            auto* const bytes = reinterpret_cast<char*>(target);
            for (; units < most && text[units]; ++units) bytes[units] = text[units];
            bytes[units] = 0;
            units = units / sizeof(wchar_t) + 1;
        }
        // NOLINTEND(performance-no-int-to-ptr)
        argument = reinterpret_cast<uint64_t>(target);
        used_ = std::min(used_ + units, kTextUnits - 1);
    }

    size_t MostUnits(size_t index) const {
        const int16_t precision = layout_.precisions[index];
        if (precision == scLineLayout::kNoPrecision) return SIZE_MAX;
        if (precision != scLineLayout::kPrecisionBefore) return static_cast<size_t>(precision);
        const auto given = static_cast<int32_t>(index > 0 ? slot_.arguments[index - 1] : 0);
        return given < 0 ? SIZE_MAX : static_cast<size_t>(given);
    }

    Slot& slot_;
    const scLineLayout& layout_;
    size_t used_ = 0;
};

void CopyModule(Slot& slot, const wchar_t* module) {
    size_t i = 0;
    for (; module && i + 1 < kModuleUnits && module[i]; ++i) slot.module[i] = module[i];
    slot.module[i] = 0;
}

// A format that may change is used at once.
void FormatNow(Slot& slot, const wchar_t* format, va_list arguments) {
    slot.format = nullptr;
    slot.texts[0] = 0;
    _vsnwprintf(slot.texts, kTextUnits - 1, format, arguments);
    slot.texts[kTextUnits - 1] = 0;
}

void Fill(Slot& slot, const wchar_t* module, const wchar_t* format, va_list arguments) {
    CopyModule(slot, module);
    const scLineLayout* const layout = FindLayout(format);
    if (!layout || !layout->isSupported) return FormatNow(slot, format, arguments);
    slot.format = format;
    std::memcpy(slot.arguments, arguments, layout->slots * sizeof *slot.arguments);
    if (layout->hasText) TextCopier(slot, *layout).CopyAll();
}

// A copy of a slot in which arguments point to its own texts.
class Line {
public:
    // Returns false if the slot has another line by now.
    bool Take(const Slot& slot, uint64_t number) {
        if (slot.stamp.load(std::memory_order_acquire) != number + 1) return false;
        std::memcpy(bytes_, static_cast<const void*>(&slot), sizeof bytes_);
        std::atomic_thread_fence(std::memory_order_acquire);
        if (slot.stamp.load(std::memory_order_relaxed) != number + 1) return false;
        const auto from = reinterpret_cast<uint64_t>(slot.texts);
        for (uint64_t& argument : Copy().arguments) {
            if (argument - from < sizeof slot.texts)
                argument = argument - from + reinterpret_cast<uint64_t>(Copy().texts);
        }
        return true;
    }

    const wchar_t* Text(const Instant& now, clsLineBuffer& text) {
        const Slot& slot = Copy();
        const SYSTEMTIME time = TimeOf(slot.time, now);
        if (slot.module[0]) text.Append(L"%-8s: ", slot.module);
        text.Append(L"%02u:%02u:%02u.%03u %08x %*s", time.wHour, time.wMinute, time.wSecond,
                    time.wMilliseconds, slot.thread, std::clamp<int32_t>(slot.indent, 0, 50) + 1, L"");
        if (const char* const name = FindThreadName(slot.thread)) text.Append(L"[%hs] ", name);
        if (slot.format)
            text.AppendV(slot.format, reinterpret_cast<va_list>(Copy().arguments));
        else
            text.Append(L"%s", slot.texts);
        return text.Text();
    }

private:
    Slot& Copy() { return *reinterpret_cast<Slot*>(bytes_); }

    // Both clocks run on between the start and now; the time of a line is in proportion.
    static SYSTEMTIME TimeOf(uint64_t counter, const Instant& now) {
        const auto part = static_cast<double>(counter - start.counter) /
                          static_cast<double>(std::max<uint64_t>(now.counter - start.counter, 1));
        const uint64_t ticks =
            start.ticks + static_cast<uint64_t>(part * static_cast<double>(now.ticks - start.ticks));
        const FILETIME time = {static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
        SYSTEMTIME result = {};
        FileTimeToSystemTime(&time, &result);
        return result;
    }

    alignas(Slot) unsigned char bytes_[sizeof(Slot)] = {};
};

} // namespace

void SetTraceRing(uint32_t lines) {
    const clsCriticalSectionScope scope(lock);
    __atomic_store_n(&ring::isOn, 0, __ATOMIC_RELAXED);
    if (lines == 0) {
        firstLine = lineCount.load();
        return;
    }
    const uint32_t wanted = std::bit_ceil(std::min(lines, kMostRingLines));
    if (!owner || owner->mask + 1 < wanted) {
        auto grown = std::make_unique<Ring>(wanted);
        grown->retired = std::move(owner);
        owner = std::move(grown);
        current = owner.get();
    }
    start = Instant::Now();
    firstLine = lineCount.load();
    __atomic_store_n(&ring::isOn, 1, __ATOMIC_RELAXED);
}

clsTraceRingPause::clsTraceRingPause() noexcept
    : wasOn_(__atomic_exchange_n(&ring::isOn, uint8_t{0}, __ATOMIC_RELAXED)) {}

clsTraceRingPause::~clsTraceRingPause() {
    if (wasOn_) __atomic_store_n(&ring::isOn, wasOn_, __ATOMIC_RELAXED);
}

void ring::Record(const wchar_t* module, long indent, const wchar_t* format, va_list arguments) noexcept {
    Ring* const ring = current.load(std::memory_order_acquire);
    if (!ring || !format) return;
    const uint64_t number = lineCount.fetch_add(1, std::memory_order_relaxed);
    Slot& slot = ring->slots[number & ring->mask];
    slot.stamp.store(0, std::memory_order_relaxed);
    std::atomic_thread_fence(std::memory_order_release);
    slot.time = __rdtsc();
    slot.thread = GetCurrentThreadId();
    slot.indent = static_cast<int32_t>(indent);
    if (!Shielded([&] { Fill(slot, module, format, arguments); })) return;
    slot.stamp.store(number + 1, std::memory_order_release);
}

void ForEachRingLine(void (*take)(void* context, const wchar_t* text), void* context) {
    const Ring* const ring = current;
    if (!ring) return;
    const Instant now = Instant::Now();
    const uint64_t end = lineCount;
    const uint64_t kept = std::min<uint64_t>(end - firstLine, ring->mask + uint64_t{1});
    for (uint64_t number = end - kept; number != end; ++number) {
        Line line;
        clsLineBuffer text;
        if (line.Take(ring->slots[number & ring->mask], number)) take(context, line.Text(now, text));
    }
}

} // namespace vxut
