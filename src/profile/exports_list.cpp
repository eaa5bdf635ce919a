#include "prof/list.h"

#include "prof/codes.h"
#include "profile/export_support.h"
#include "profile/list_services.h"

using namespace vxut;

namespace {

template <class Unit>
HPROFLIST GetList(HPROF job, HPROFLIST list, const Unit* path) {
    if (!job) return nullptr;
    return Guarded<HPROFLIST>(
        nullptr, [=] { return HandleOf(FindListAt(PlaceOf(job, list), clsWideArgument(path))); });
}

using MakeList = clsItemList& (*)(const scPlace&, const wchar_t*);

template <class Unit>
HPROFLIST NewList(HPROF job, HPROFLIST list, const Unit* path, MakeList make) {
    if (!job || !path) return nullptr;
    return Guarded<HPROFLIST>(nullptr,
                              [=] { return HandleOf(&make(PlaceOf(job, list), clsWideArgument(path))); });
}

template <class Unit>
void DeleteList(HPROF job, HPROFLIST list, const Unit* path) {
    if (!job) return;
    Guarded([=] {
        if (path)
            DeleteListsAt(ListOf(job, list), String(clsWideArgument(path)));
        else
            DeleteEntryOf(JobOf(job)->Root(), ListOf(list));
    });
}

} // namespace

VXUT_API HPROFLIST ProfGetListW(HPROF job, HPROFLIST list, const wchar_t* path) {
    return GetList(job, list, path);
}
VXUT_API HPROFLIST ProfGetListA(HPROF job, HPROFLIST list, const char* path) {
    return GetList(job, list, path);
}

VXUT_API HPROFLIST ProfCreateListW(HPROF job, HPROFLIST list, const wchar_t* path) {
    return NewList(job, list, path, CreateListAt);
}
VXUT_API HPROFLIST ProfCreateListA(HPROF job, HPROFLIST list, const char* path) {
    return NewList(job, list, path, CreateListAt);
}

VXUT_API HPROFLIST ProfAppendListW(HPROF job, HPROFLIST list, const wchar_t* path) {
    return NewList(job, list, path, AppendListAt);
}
VXUT_API HPROFLIST ProfAppendListA(HPROF job, HPROFLIST list, const char* path) {
    return NewList(job, list, path, AppendListAt);
}

VXUT_API void ProfEmptyList(HPROF job, HPROFLIST list) {
    if (job) ListOf(job, list).Empty();
}

VXUT_API void ProfDeleteListW(HPROF job, HPROFLIST list, const wchar_t* path) { DeleteList(job, list, path); }
VXUT_API void ProfDeleteListA(HPROF job, HPROFLIST list, const char* path) { DeleteList(job, list, path); }

VXUT_API int32_t ProfCopyList(HPROF targetJob, HPROFLIST targetList, HPROF sourceJob, HPROFLIST sourceList) {
    if (!targetJob || !sourceJob) return PROF_ERR_JOB;
    return Guarded<int32_t>(PROF_ERR_MEMORY, [=] {
        CopyEntries(ListOf(sourceJob, sourceList), ListOf(targetJob, targetList));
        return PROF_OK;
    });
}

VXUT_API int ProfEnumW(HPROF job, HPROFLIST list, ProfEnumFunctionW function, void* user) {
    if (!job || !function) return 0;
    return Guarded(0, [=] {
        return EnumerateEntries(ListOf(job, list), [=](const clsItem& item) {
            return function(job, item.NameText(), item.ValueText(), HandleOf(item.Sublist()), user) != 0;
        });
    });
}

VXUT_API int ProfEnumA(HPROF job, HPROFLIST list, ProfEnumFunctionA function, void* user) {
    if (!job || !function) return 0;
    return Guarded(0, [=] {
        return EnumerateEntries(ListOf(job, list), [=](const clsItem& item) {
            clsCharsetConversionString name(item.NameText());
            clsCharsetConversionString value(item.ValueText());
            return function(job, name.GetNarrow(), value.GetNarrow(), HandleOf(item.Sublist()), user) != 0;
        });
    });
}

VXUT_API int32_t ProfDebugList(HPROF job, HPROFLIST list) {
    if (!job) return PROF_ERR_JOB;
    return Guarded<int32_t>(PROF_OK, [=] {
        DebugWriteEntries(ListOf(job, list));
        return PROF_OK;
    });
}
