// Reports a damaged file: thrown by the readers of the forms, caught by the load dispatch.
#pragma once

#include "text/string.h"

#include <cstdint>

namespace vxut {

class clsLoadException {
public:
    // Writes line and message to the debug channel. line counts the lines that the reader has delivered; path
    // is the place in the tree.
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
