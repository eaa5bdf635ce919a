#include "prof/item.h"

#include "profile/export_support.h"
#include "profile/item_access.h"

using namespace vxut;

namespace {

using WriteText = void (*)(const scPlace&, const wchar_t*, const wchar_t*);

template <class Unit>
void Write(HPROF job, HPROFLIST list, const Unit* path, const Unit* value, WriteText write) {
    if (!job) return;
    Guarded([=] { write(PlaceOf(job, list), clsWideArgument(path), clsWideArgument(value)); });
}

template <class Unit>
int32_t Get(HPROF job, HPROFLIST list, const Unit* path, Unit* buffer, uint32_t capacity,
            const Unit* fallback) {
    if (!job) return 0;
    return Guarded<int32_t>(PROF_ERR_NOT_FOUND,
                            [=] { return ReadText(FindItem(job, list, path), buffer, capacity, fallback); });
}

template <class Unit>
int32_t GetLength(HPROF job, HPROFLIST list, const Unit* path) {
    if (!job) return 0;
    return Guarded<int32_t>(PROF_ERR_NOT_FOUND, [=] { return TextLength(FindItem(job, list, path)); });
}

template <class Unit>
void Delete(HPROF job, HPROFLIST list, const Unit* path) {
    if (!job || !path) return;
    Guarded([=] { DeleteItemsAt(ListOf(job, list), String(clsWideArgument(path))); });
}

} // namespace

VXUT_API void ProfAppendStringW(HPROF job, HPROFLIST list, const wchar_t* path, const wchar_t* value) {
    Write(job, list, path, value, AppendText);
}
VXUT_API void ProfAppendStringA(HPROF job, HPROFLIST list, const char* path, const char* value) {
    Write(job, list, path, value, AppendText);
}

VXUT_API void ProfSetStringW(HPROF job, HPROFLIST list, const wchar_t* path, const wchar_t* value) {
    Write(job, list, path, value, SetText);
}
VXUT_API void ProfSetStringA(HPROF job, HPROFLIST list, const char* path, const char* value) {
    Write(job, list, path, value, SetText);
}

VXUT_API int32_t ProfGetStringW(HPROF job, HPROFLIST list, const wchar_t* path, wchar_t* buffer,
                                uint32_t capacity, const wchar_t* defaultValue) {
    return Get(job, list, path, buffer, capacity, defaultValue);
}
VXUT_API int32_t ProfGetStringA(HPROF job, HPROFLIST list, const char* path, char* buffer, uint32_t capacity,
                                const char* defaultValue) {
    return Get(job, list, path, buffer, capacity, defaultValue);
}

VXUT_API int32_t ProfGetStringLengthW(HPROF job, HPROFLIST list, const wchar_t* path) {
    return GetLength(job, list, path);
}
VXUT_API int32_t ProfGetStringLengthA(HPROF job, HPROFLIST list, const char* path) {
    return GetLength(job, list, path);
}

VXUT_API void ProfDeleteItemW(HPROF job, HPROFLIST list, const wchar_t* path) { Delete(job, list, path); }
VXUT_API void ProfDeleteItemA(HPROF job, HPROFLIST list, const char* path) { Delete(job, list, path); }
