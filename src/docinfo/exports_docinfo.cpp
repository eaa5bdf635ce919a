#include "util/docinfo.h"

#include "base/guard.h"
#include "docinfo/answer.h"
#include "docinfo/document_list.h"
#include "docinfo/share_access.h"
#include "files/network_path.h"

#include <algorithm>
#include <climits>

namespace {

using namespace vxut;

clsDocuList* ListOf(HUTILDOCINFO handle) { return reinterpret_cast<clsDocuList*>(handle); }

int32_t Milliseconds(uint32_t seconds) {
    return static_cast<int32_t>(std::min<uint64_t>(uint64_t{seconds} * 1000, INT_MAX));
}

} // namespace

HUTILDOCINFO UtilDocInfoOpen(uint32_t cacheSeconds) {
    return Guarded<HUTILDOCINFO>(nullptr, [&] {
        return reinterpret_cast<HUTILDOCINFO>(std::make_unique<clsDocuList>(cacheSeconds).release());
    });
}

void UtilDocInfoClose(HUTILDOCINFO list) {
    Guarded([&] { const clsGenericAutoDelete<clsDocuList> owner(ListOf(list)); });
}

uint32_t UtilDocInfoGet(HUTILDOCINFO list, const wchar_t* path, const DocInfoRequest* request,
                        uint32_t timeoutSeconds) {
    return Guarded<uint32_t>(0, [&] {
        if (!list) return 0;
        const clsAutoRelease<clsDocu*> document = ListOf(list)->Get(path, Milliseconds(timeoutSeconds));
        if (!document->Exists) return 0;
        return !request || WriteAnswer(*document.Get(), *request) ? 1 : 0;
    });
}

uint32_t UtilDocInfoShareAccessibility(const wchar_t* path) {
    return Guarded<uint32_t>(UTIL_SHARE_NONE, [&] {
        const IString root = ShareRoot(EnsureUncPath(path));
        if (root.IsEmpty()) return UTIL_SHARE_NONE;
        return IsShareAccessible(root) ? UTIL_SHARE_ACCESSIBLE : UTIL_SHARE_INACCESSIBLE;
    });
}
