// Profiles of 20 MB in two generations, for telling whether a file holds one of them whole.
#pragma once

#include "profile/job.h"

#include <string>

namespace vxut::test {

constexpr size_t kGenerationItems = 2000;

// The second generation is a little shorter than the first, so that its remains would show after the end.
inline std::wstring GenerationValue(int generation) {
    return std::wstring(generation == 0 ? 5000 : 4900, generation == 0 ? L'a' : L'b');
}

inline void FillGeneration(ProfJob& job, int generation) {
    const std::wstring value = GenerationValue(generation);
    job.Root().Empty();
    for (size_t i = 0; i < kGenerationItems; ++i) job.Root().AppendItem(L"item", value);
}

// Whether the tree is one of the generations, whole.
inline bool IsGeneration(ProfJob& job) {
    if (job.Root().entries() != kGenerationItems) return false;
    const std::wstring first(job.Root().FindItem(L"item")->Value());
    if (first != GenerationValue(0) && first != GenerationValue(1)) return false;
    for (const clsItem* item : job.Root())
        if (item->Value() != first) return false;
    return true;
}

} // namespace vxut::test
