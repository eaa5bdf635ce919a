// What the doors of the profile store share: handles and arguments.
#pragma once

#include "base/guard.h"
#include "encoding/charset.h"
#include "prof/types.h"
#include "profile/item_path.h"
#include "profile/job.h"

namespace vxut {

inline ProfJob* JobOf(HPROF job) { return reinterpret_cast<ProfJob*>(job); }
inline HPROF HandleOf(ProfJob* job) { return reinterpret_cast<HPROF>(job); }
inline HPROFLIST HandleOf(clsItemList* list) { return reinterpret_cast<HPROFLIST>(list); }
inline clsItemList* ListOf(HPROFLIST list) { return reinterpret_cast<clsItemList*>(list); }

// The list that a call names, in the tree of a job that is not null. A null list is the root.
inline scPlace PlaceOf(HPROF job, HPROFLIST list) {
    clsItemList& root = JobOf(job)->Root();
    return {root, list ? *ListOf(list) : root};
}
inline clsItemList& ListOf(HPROF job, HPROFLIST list) { return PlaceOf(job, list).list; }

// A text argument in wide form. Null stays null.
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

// The item that a getter sees, null if there is no such plain item.
template <class Unit>
const clsItem* FindItem(HPROF job, HPROFLIST list, const Unit* path) {
    return FindItemAt(PlaceOf(job, list), clsWideArgument(path));
}

} // namespace vxut
