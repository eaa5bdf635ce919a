#include "coverage.h"

#include <bit>
#include <cstdint>

extern "C" {

// Called by compiled code at start-up and at every edge.
void __sanitizer_cov_trace_pc_guard_init(uint32_t* start, uint32_t* stop);
void __sanitizer_cov_trace_pc_guard(uint32_t* guard);

// The start and the end of the section of all guards; the linker sorts its parts by the text after "$".
[[gnu::section(".SCOV$GA"), gnu::used]] uint64_t __start___sancov_guards = 0;
[[gnu::section(".SCOV$GZ"), gnu::used]] uint32_t __stop___sancov_guards = 0;

} // extern "C"

namespace {

constexpr uint32_t kMaxEdges = 1u << 17;

uint32_t edges = 0;
uint8_t hits[kMaxEdges];        // of the current input
uint8_t bucketsSeen[kMaxEdges]; // one bit for each power of two of repeats

} // namespace

void __sanitizer_cov_trace_pc_guard_init(uint32_t* start, uint32_t* stop) {
    for (uint32_t* guard = start; guard < stop; ++guard) {
        if (*guard == 0 && edges + 1 < kMaxEdges) *guard = ++edges;
    }
}

void __sanitizer_cov_trace_pc_guard(uint32_t* guard) {
    uint8_t& count = hits[*guard];
    if (count < 255) ++count;
}

namespace fuzz {

void BeginInput() {
    for (uint32_t edge = 0; edge <= edges; ++edge) hits[edge] = 0;
}

bool FoundNewCoverage() {
    bool found = false;
    for (uint32_t edge = 1; edge <= edges; ++edge) {
        if (hits[edge] == 0) continue;
        const auto bucket = static_cast<uint8_t>(1u << (std::bit_width(hits[edge]) - 1));
        if ((bucketsSeen[edge] & bucket) != 0) continue;
        bucketsSeen[edge] |= bucket;
        found = true;
    }
    return found;
}

unsigned CoveredEdges() {
    unsigned covered = 0;
    for (uint32_t edge = 1; edge <= edges; ++edge) covered += bucketsSeen[edge] != 0;
    return covered;
}

} // namespace fuzz
