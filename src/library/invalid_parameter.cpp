#include "library/invalid_parameter.h"

#include "base/debug.h"

#include <cstdint>
#include <cstdlib>

namespace vxut {
namespace {

_invalid_parameter_handler previousHandler = nullptr;
bool isInstalled = false;

void __cdecl Report(const wchar_t* expression, const wchar_t* function, const wchar_t* file, unsigned line,
                    uintptr_t) {
    if (expression == nullptr) {
        DebugWrite(L"INVALID PARAMETER in CRT function detected - ignored");
        return;
    }
    // The quoted field stays without text: the line is known in this form.
    DebugWrite(L"%ws (line %d): %ws: INVALID PARAMETER in '%ws'", file, line, function, nullptr);
}

} // namespace

void InstallInvalidParameterHandler() {
    const _invalid_parameter_handler previous = _set_invalid_parameter_handler(Report);
    if (previous != Report) previousHandler = previous;
    isInstalled = true;
}

void RemoveInvalidParameterHandler() {
    if (!isInstalled) return;
    isInstalled = false;
    const _invalid_parameter_handler current = _set_invalid_parameter_handler(previousHandler);
    if (current != Report) _set_invalid_parameter_handler(current);
}

} // namespace vxut
