#include "util/zip.h"

#include "base/guard.h"
#include "encoding/zip_file.h"

namespace {

using namespace vxut;

static_assert(UTIL_ZIP_OK == kZipOk && UTIL_ZIP_ERR_SOURCE == kZipNoSource &&
              UTIL_ZIP_ERR_ENTRY == kZipNoEntry && UTIL_ZIP_ERR_WRITE == kZipWriteFailed);

clsZIPFile* ZipOf(HUTILZIP handle) { return reinterpret_cast<clsZIPFile*>(handle); }

} // namespace

HUTILZIP UtilZIPCreate(const wchar_t* path, const wchar_t* comment) {
    return Guarded<HUTILZIP>(nullptr, [&] {
        auto zip = std::make_unique<clsZIPFile>();
        const bool isCreated = zip->Create(path, comment);
        return isCreated ? reinterpret_cast<HUTILZIP>(zip.release()) : nullptr;
    });
}

int32_t UtilZIPAppend(HUTILZIP zip, const wchar_t* source, const wchar_t* comment, const wchar_t* name) {
    return Guarded<int32_t>(UTIL_ZIP_ERR_ENTRY,
                            [&] { return zip ? ZipOf(zip)->AppendFile(source, comment, name) : kZipOk; });
}

int32_t UtilZIPAppendList(HUTILZIP zip, const wchar_t* folder, const wchar_t* pattern, uint32_t flags) {
    return Guarded<int32_t>(UTIL_ZIP_ERR_ENTRY, [&] {
        if (zip)
            ZipOf(zip)->AppendFolder(folder, pattern ? pattern : L"*.*", (flags & UTIL_ZIP_RECURSIVE) != 0);
        return kZipOk;
    });
}

int32_t UtilZIPClose(HUTILZIP zip) {
    return Guarded<int32_t>(UTIL_ZIP_ERR_WRITE, [&] {
        const clsGenericAutoDelete<clsZIPFile> owner(ZipOf(zip));
        return owner ? owner->Close() : kZipOk;
    });
}
