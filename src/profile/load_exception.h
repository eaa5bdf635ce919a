// How a reader of a profile form reports a bad file. Raised by readers, caught by the load dispatch.
#pragma once

#include "text/string.h"

#include <cstdint>

namespace vxut {

class clsLoadException {
public:
    // Tells the debug channel. line counts the lines delivered; path is where in the tree it happened.
    clsLoadException(uint32_t line, const String& message, const String& path);

    uint32_t Line() const noexcept { return line_; }
    const String& Message() const noexcept { return message_; }
    const String& Path() const noexcept { return path_; }

private:
    uint32_t line_;
    String message_;
    String path_;
};

} // namespace vxut
