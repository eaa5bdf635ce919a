#include "util/frame.h"

#include "base/debug.h"
#include "base/guard.h"
#include "base/language.h"
#include "base/library_version.h"
#include "heap/job.h"

#include <iterator>

using namespace vxut;

namespace {

clsModuleNode* Node(HUTILJOB job) { return reinterpret_cast<clsModuleNode*>(job); }

} // namespace

VXUT_API uint32_t UtilGetVersion(uint32_t selector) {
    constexpr uint32_t kAnswers[] = {kMajorVersion << 16 | kMinorVersion, kMajorVersion, kMinorVersion, 0};
    return selector < std::size(kAnswers) ? kAnswers[selector] : 0xFFFFFFFF;
}

VXUT_API int UtilGetFlags(void) {
    return Guarded(0, [] { return DebugIsActive(); });
}

VXUT_API int32_t UtilLanguageSet(uint32_t language) {
    return Guarded<int32_t>(ERROR_OUTOFMEMORY, [=] { return SetUserLanguage(language); });
}

VXUT_API uint32_t UtilLanguageGet(void) {
    return Guarded(1u, [] { return UserLanguage(); });
}

VXUT_API HUTILJOB UtilJobOpen(const wchar_t* name, uint32_t flags) {
    return Guarded<HUTILJOB>(nullptr, [=] { return reinterpret_cast<HUTILJOB>(OpenJob(name, flags)); });
}

VXUT_API int32_t UtilJobClose(HUTILJOB job) {
    return Guarded<int32_t>(UTIL_ERR_HANDLE, [=] { return CloseJob(Node(job)); });
}
