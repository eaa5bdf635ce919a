#include "tasks.h"
#include "tests/support/debug_listener.h"
#include "variant/variant.h"

namespace vxut::test {
namespace {

clsVariant Number(VARTYPE type) {
    clsVariant value;
    value.vt = type;
    return value;
}

void GetElement(int32_t index, uint32_t count) {
    clsVariant array;
    array.parray = SafeArrayCreateVector(VT_VARIANT, 0, 4);
    array.vt = VT_ARRAY | VT_VARIANT;
    clsVariant element;
    array.GetArrayElement(element, &index, count);
}

// The number of the first message that is missing, 0 if all are there. Runs under a developer's login.
const AddChildTask variantMessages("variant-messages", [] {
    const DebugListener listener;
    clsVariant text;
    text.AssignText(L"1");
    static_cast<void>(Number(VT_CLSID).Compare(Number(VT_CLSID)));
    static_cast<void>(Number(VT_I4).Compare(text));
    static_cast<void>(text.ChangeType(VT_UNKNOWN));
    GetElement(4, 1);
    GetElement(0, 2);
    const wchar_t* const kMessages[] = {
        L"WRN: clsVariant: don't know how to compare data type 0x48",
        L"WRN: clsVariant: don't know how to compare data types 0x3 and 0x8",
        L"WRN: clsVariant: cannot change data type 0x8 to 0xd",
        L"out of bounds (4 4)",
        L"out of bounds (2) (0 1)",
        L"Dimension mismatch: 1 2",
    };
    int number = 1;
    for (const wchar_t* const message : kMessages) {
        if (!listener.Heard(message)) return number;
        ++number;
    }
    return 0;
});

} // namespace
} // namespace vxut::test
