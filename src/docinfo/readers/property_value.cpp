#include "docinfo/readers/property_value.h"

#include "docinfo/readers/properties.h"
#include "locale/system_time.h"

#include <utility>

namespace vxut {
namespace {

scPropertyValue Text(String text) {
    scPropertyValue result;
    result.text = std::move(text);
    result.hasText = true;
    return result;
}

} // namespace

void StoreValue(clsDocu& document, const scNumberedProperty& property, const scPropertyValue& value) {
    if (property.text && value.hasText) SetText(document.*property.text, value.text);
    if (property.time && value.hasTime) document.*property.time = value.time;
}

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
