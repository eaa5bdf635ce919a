// Joins the records of long lines.
#pragma once

#include <functional>
#include <string>

namespace vlm {

// A sender cuts a long line into records of full length, so a record of full length is held back until the
// next one arrives: if that one has no columns, it is the rest of the line. Records of different processes
// may be interleaved; a rest that cannot be recognised stays a line of its own. No line grows longer than
// what a process can send. Not synchronised.
class TraceAssembler {
public:
    using Taker = std::function<void(const std::string& line)>;

    explicit TraceAssembler(Taker take) : take_(std::move(take)) {}

    void Add(const std::string& record);
    // Passes on what is held back. To be called when no record has arrived for a while.
    void Flush();

private:
    Taker take_;
    std::string held_;
};

} // namespace vlm
