// Tables of the names under which a format has the properties of a document.
#pragma once

#include "docinfo/document.h"
#include "text/string.h"
#include "variant/variant.h"

#include <windows.h>

#include <cwchar>
#include <span>

namespace vxut {

// A row: one of the two members is not null.
struct scNamedProperty {
    const wchar_t* name;
    clsVariant clsDocu::* text;
    SYSTEMTIME clsDocu::* time = nullptr;
};

// Returns the row of a name, compared without regard to case; null if there is none.
inline const scNamedProperty* FindProperty(std::span<const scNamedProperty> rows, const String& name) {
    for (const scNamedProperty& row : rows)
        if (_wcsicmp(row.name, name.Text()) == 0) return &row;
    return nullptr;
}

} // namespace vxut
