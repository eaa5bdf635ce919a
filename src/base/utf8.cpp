#include "base/utf8.h"

namespace vxut {

bool IsValidUtf8(const char* bytes) {
    while (*bytes) {
        if (!(*bytes & 0x80)) {
            ++bytes;
            continue;
        }
        const scUtf8Unit unit = ReadUtf8Unit([bytes](int i) { return static_cast<uint8_t>(bytes[i]); });
        if (unit.fault != Utf8Fault::kNone) return false;
        bytes += unit.length;
    }
    return true;
}

} // namespace vxut
