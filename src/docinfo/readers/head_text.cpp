#include "docinfo/readers/head_text.h"

#include "base/owners.h"
#include "docinfo/readers/properties.h"

#include <algorithm>
#include <cstddef>

namespace vxut {

bool ReadHeadText(clsDocFile& file, String& text) { return ReadHeadText(file, file.GetSize(), text); }

bool ReadHeadText(clsDocFile& file, int64_t size, String& text) {
    if (size < 0) return false;
    const int64_t count = std::min(size, kMostHeadBytes);
    const clsAutoDeleteBytes<char> bytes(new char[static_cast<size_t>(count) + 1]);
    if (!ReadAll(file, 0, bytes.get(), static_cast<size_t>(count))) return false;
    bytes[static_cast<size_t>(count)] = 0;
    text = String(bytes.get());
    return true;
}

} // namespace vxut
