#include "util/charset.h"

#include "base/guard.h"
#include "encoding/charset.h"

uint32_t UtilGetLikelyCharsetFromString(const wchar_t* text) {
    return vxut::Guarded<uint32_t>(0, [&] { return vxut::LikelyCharset(text); });
}
