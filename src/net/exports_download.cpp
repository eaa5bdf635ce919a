#include "base/guard.h"
#include "net/download.h"

using namespace vxut;

int32_t UtilDownloadFile(const wchar_t* url, UtilDownloadCallback* callback) {
    return Guarded<int32_t>(E_OUTOFMEMORY, [&] {
        return clsDownloadCallback::IsCallable(callback) ? DownloadFile(url, callback) : E_POINTER;
    });
}
