// A fault in a document: thrown inside a reader, which catches it.
#pragma once

#include "text/string.h"

namespace vxut {

class clsException {
public:
    explicit clsException(const String& message) : message_(message) {}

    const String& Message() const noexcept { return message_; }

private:
    String message_;
};

} // namespace vxut
