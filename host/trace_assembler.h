// Puts the records of long lines together again.
#pragma once

#include <functional>
#include <string>

namespace vlm {

// A full record may have been cut, and then the next one of its process is the rest. Records of two processes
// can stand between each other; a rest that cannot be told stays a line of its own.
class clsTraceAssembler {
public:
    using Taker = std::function<void(const std::string& line)>;

    explicit clsTraceAssembler(Taker take) : take_(std::move(take)) {}

    void Add(const std::string& record);
    // Nothing came for a while: what is held back is complete.
    void Flush();

private:
    Taker take_;
    std::string held_;
};

} // namespace vlm
