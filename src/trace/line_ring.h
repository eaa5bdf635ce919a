// The last debug lines, kept in memory for a crash report although nobody listens.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdint>

namespace vxut {

// The most lines that are kept.
inline constexpr uint32_t kMostRingLines = 65536;

// Keeps the last lines, or none if the number is 0. Empties the memory. For any thread.
void SetTraceRing(uint32_t lines);

// Calls take(context, text) for each line that is kept, the oldest first. Other threads may write lines
// meanwhile; one that is overwritten is left out.
void ForEachRingLine(void (*take)(void* context, const wchar_t* text), void* context);

// Keeps no further lines for a scope, so that those of a report do not push out those before it.
class clsTraceRingPause {
public:
    clsTraceRingPause() noexcept;
    ~clsTraceRingPause();
    clsTraceRingPause(const clsTraceRingPause&) = delete;
    clsTraceRingPause& operator=(const clsTraceRingPause&) = delete;

private:
    const uint8_t wasOn_;
};

namespace ring {

// Whether lines are kept: 1 or 0.
extern uint8_t isOn;

// Keeps a line: its time, thread and indent, the format, and the arguments, of which texts are copied. It is
// formatted only when it is asked for.
void Record(const wchar_t* module, long indent, const wchar_t* format, va_list arguments) noexcept;

} // namespace ring

// Whether Record() is to be called. Costs a load.
inline bool IsRingOn() noexcept { return __atomic_load_n(&ring::isOn, __ATOMIC_RELAXED) != 0; }

} // namespace vxut
