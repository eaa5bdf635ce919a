#include "docinfo/share_access.h"

#include "base/critical_section.h"
#include "containers/containers.h"
#include "files/path.h"
#include "text/shared_regex.h"

#include <new>

namespace vxut {
namespace {

class InaccessibleShares {
public:
    bool Has(const IString& root) {
        const clsCriticalSectionScope scope(lock_);
        return roots_.contains(root);
    }
    void Insert(const IString& root) {
        const clsCriticalSectionScope scope(lock_);
        if (!roots_.contains(root) && !roots_.insert(root)) throw std::bad_alloc();
    }

private:
    clsCriticalSection lock_;
    WCValSkipListSet<IString> roots_;
};

InaccessibleShares& Inaccessible() {
    static InaccessibleShares shares;
    return shares;
}

} // namespace

IString ShareRoot(const String& path) {
    static clsSharedRegEx pattern(LR"(^(\\\\(?:.+?)\\(?:.+?))(\\.*|)$)");
    clsRegExMatchList groups;
    return pattern.Match(path, &groups) ? groups.get(1).text : String();
}

bool IsShareAccessible(const IString& root) { return !Inaccessible().Has(root); }

bool TestShare(const IString& root) {
    if (Inaccessible().Has(root)) return false;
    String folder = root + L"\\.";
    if (DeviceTest(folder) == kPathDirectory) return true;
    Inaccessible().Insert(root);
    return false;
}

} // namespace vxut
