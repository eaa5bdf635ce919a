// Handles and arguments of the exports of the profile store. Handles are the pointers themselves and are not
// checked.
#pragma once

#include "base/guard.h"
#include "encoding/charset.h"
#include "prof/types.h"
#include "profile/item_path.h"
#include "profile/job.h"
#include "profile/outcome.h"

namespace vxut {

inline ProfJob* JobOf(HPROF job) { return reinterpret_cast<ProfJob*>(job); }
inline HPROF HandleOf(ProfJob* job) { return reinterpret_cast<HPROF>(job); }
inline HPROFLIST HandleOf(clsItemList* list) { return reinterpret_cast<HPROFLIST>(list); }
inline clsItemList* ListOf(HPROFLIST list) { return reinterpret_cast<clsItemList*>(list); }

// The list of a call, in the tree of a job that is not null. A null list means the root.
inline scPlace PlaceOf(HPROF job, HPROFLIST list) {
    clsItemList& root = JobOf(job)->Root();
    return {root, list ? *ListOf(list) : root};
}
inline clsItemList& ListOf(HPROF job, HPROFLIST list) { return PlaceOf(job, list).list; }

// A text argument in wide form, valid as long as this object. Null stays null. Throws std::bad_alloc.
template <class Unit>
class clsWideArgument;

template <>
class clsWideArgument<wchar_t> {
public:
    explicit clsWideArgument(const wchar_t* text) : text_(text) {}
    operator const wchar_t*() const { return text_; } // NOLINT(google-explicit-constructor)

private:
    const wchar_t* text_;
};

template <>
class clsWideArgument<char> {
public:
    explicit clsWideArgument(const char* text)
        : converter_(text), text_(text ? converter_.GetWide() : nullptr) {}
    operator const wchar_t*() const { return text_; } // NOLINT(google-explicit-constructor)

private:
    clsCharsetConversionString converter_;
    const wchar_t* text_;
};

template <class Unit>
clsWideArgument(const Unit*) -> clsWideArgument<Unit>;

// The plain item of a path, or null.
template <class Unit>
const clsItem* FindItem(HPROF job, HPROFLIST list, const Unit* path) {
    return FindItemAt(PlaceOf(job, list), clsWideArgument(path));
}

// Calls work, which returns an scOutcome. Returns its code, and sets the thread's last error to the system
// error that caused it. Out of memory, the code is neutral.
template <class Work>
int32_t GuardedOutcome(int32_t neutral, Work work) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY); // stays if there is no memory even for the arguments
    return Guarded<int32_t>(neutral, [&] {
        const scOutcome outcome = work();
        SetLastError(outcome.error);
        return outcome.code;
    });
}

} // namespace vxut
