// Values of the system's property sources, as texts and times of a document.
#pragma once

#include "docinfo/document.h"
#include "text/string.h"

#include <objbase.h>
#include <windows.h>
// After objbase.h, which it needs:
#include <propidl.h>

namespace vxut {

// The format of all properties that are read.
inline constexpr GUID kSummaryFormat = {
    0xF29F85E0, 0x4FF9, 0x1068, {0xAB, 0x91, 0x08, 0x00, 0x2B, 0x27, 0xB3, 0xD9}};

// A value as text and as time; each is there only if the value is of that kind. Any other value has a text if
// its conversion is known.
struct scPropertyValue {
    String text;
    SYSTEMTIME time{};
    bool hasText = false;
    bool hasTime = false;
};

// Reads a text or a time. Returns an empty result for other types.
scPropertyValue TextOrTimeOf(const PROPVARIANT& value);

// A property of that format, and where it goes: a text, a time, or nowhere.
struct scNumberedProperty {
    PROPID id;
    clsVariant clsDocu::* text = nullptr;
    SYSTEMTIME clsDocu::* time = nullptr;
};

// Stores a value if it is of the kind that the property takes. Throws std::bad_alloc.
void StoreValue(clsDocu& document, const scNumberedProperty& property, const scPropertyValue& value);

// Frees the value with the object.
class clsPropVariant : public PROPVARIANT {
public:
    clsPropVariant() noexcept : PROPVARIANT{} { PropVariantInit(this); }
    ~clsPropVariant() { PropVariantClear(this); }
    clsPropVariant(const clsPropVariant&) = delete;
    clsPropVariant& operator=(const clsPropVariant&) = delete;
};

} // namespace vxut
