#include "profile/load_exception.h"

#include "base/debug.h"

namespace vxut {

clsLoadException::clsLoadException(uint32_t line, const String& message, const String& path)
    : line_(line), message_(message), path_(path) {
    DebugWrite(L"PROF load error line %d: '%s'", line_, message_.Text());
}

} // namespace vxut
