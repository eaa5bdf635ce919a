#include "docinfo/readers/property_value.h"

#include "locale/system_time.h"

namespace vxut {
namespace {

scPropertyValue Text(String text) {
    scPropertyValue result;
    result.text = std::move(text);
    result.hasText = true;
    return result;
}

} // namespace

scPropertyValue TextOrTimeOf(const PROPVARIANT& value) {
    switch (value.vt) {
        case VT_BSTR:
            return Text(value.bstrVal);
        case VT_LPWSTR:
            return Text(value.pwszVal);
        case VT_LPSTR:
            return Text(String(value.pszVal));
        case VT_FILETIME: {
            scPropertyValue result;
            result.time = SystemTimeOf(value.filetime);
            result.hasTime = true;
            return result;
        }
        default:
            return {};
    }
}

} // namespace vxut
