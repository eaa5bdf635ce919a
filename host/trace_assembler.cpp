#include "host/trace_assembler.h"

#include "host/trace_line.h"

#include <util/trace_viewer.h>

#include <utility>

namespace vlm {

namespace {

// A line has at most 1024 UTF-16 units, which are at most three bytes each.
constexpr size_t kMaxLineBytes = size_t{1024} * 3;

} // namespace

void TraceAssembler::Add(const std::string& record) {
    const bool isTooLong = held_.size() + record.size() > kMaxLineBytes;
    if (!held_.empty() && (isTooLong || ParseTraceLine(record).kind != TraceLine::Kind::kBare)) Flush();
    held_ += record;
    if (record.size() < UTIL_TRACE_RECORD_BYTES) Flush();
}

void TraceAssembler::Flush() {
    const std::string line = std::exchange(held_, {});
    if (!line.empty()) take_(line);
}

} // namespace vlm
