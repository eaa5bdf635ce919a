#include "host/trace_assembler.h"

#include "host/trace_line.h"

#include <util/trace_viewer.h>

#include <utility>

namespace vlm {

void clsTraceAssembler::Add(const std::string& record) {
    if (!held_.empty() && ParseTraceLine(record).kind != TraceLine::Kind::kBare) Flush();
    held_ += record;
    if (record.size() < UTIL_TRACE_RECORD_BYTES) Flush();
}

void clsTraceAssembler::Flush() {
    const std::string line = std::exchange(held_, {});
    if (!line.empty()) take_(line);
}

} // namespace vlm
