#include "prof/variant.h"

#include "prof/codes.h"
#include "profile/embedded_variant.h"
#include "profile/export_support.h"

using namespace vxut;

namespace {

// Calls work, which stores a variant.
template <class Work>
void GuardedStore(Work work) {
    GuardedOutcome(PROF_OK, [&]() -> scOutcome { return {PROF_OK, work()}; });
}

} // namespace

VXUT_API void ProfAppendVariant(HPROF job, HPROFLIST list, const wchar_t* name, const VARIANT* value) {
    if (!job || !value) return;
    GuardedStore([=] { return AppendVariant(PlaceOf(job, list), name, *value); });
}

VXUT_API void ProfSetVariant(HPROF job, HPROFLIST list, const wchar_t* name, const VARIANT* value) {
    if (!job || !name || !value) return;
    GuardedStore([=] { return SetVariant(PlaceOf(job, list), name, *value); });
}

VXUT_API int32_t ProfGetVariant(HPROF job, HPROFLIST list, const wchar_t* name, VARIANT* out,
                                const VARIANT* defaultValue) {
    if (!job || !out) return PROF_OK;
    return Guarded<int32_t>(PROF_ERR_MEMORY, [=] {
        if (const clsItem* const item = FindItem(job, list, name)) {
            PassVariant(VariantOfText(item->Value()), *out);
            return PROF_OK;
        }
        clsVariant copy;
        if (defaultValue && SUCCEEDED(copy.Assign(*defaultValue))) PassVariant(std::move(copy), *out);
        return PROF_ERR_NOT_FOUND;
    });
}

VXUT_API int32_t ProfGetVariantFromContents(const wchar_t* value, VARIANT* out) {
    if (!value) return PROF_ERR_VALUE;
    if (!out) return PROF_OK;
    return Guarded<int32_t>(PROF_ERR_MEMORY, [=] {
        PassVariant(VariantOfText(value), *out);
        return PROF_OK;
    });
}
