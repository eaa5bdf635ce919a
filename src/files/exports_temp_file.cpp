#include "util/temp_file.h"

#include "base/guard.h"
#include "files/path.h"
#include "files/temp_file.h"
#include "files/temp_manager.h"

using namespace vxut;

void UtilTempFileMgrOpen(void) {
    Guarded([] { OpenTempFileManager(); });
}

void UtilTempFileMgrClose(void) {
    Guarded([] { CloseTempFileManager(); });
}

// The path is copied before any lock is taken. Without memory for the copy the file is tried once.
void UtilTempFileMgrAdd(const wchar_t* path) {
    if (!path) return;
    const bool isAdded = Guarded(false, [=] {
        AddToTempFileManager(path);
        return true;
    });
    if (!isAdded) DeleteFileW(path);
}

int UtilTempFileMgrCreateFile(const wchar_t* prefix, const wchar_t* extension, uint8_t flags, BSTR* path) {
    return Guarded(0, [=] {
        if (!prefix || !extension || !path) return 0;
        const String name = CreateTempFile(TempFolder(kSharedTempFolder) + FilePart(prefix), extension,
                                           flags & kTempLongDirectory);
        if (name.ToBSTR(path)) return 1;
        if (!name.IsEmpty()) DeleteFileW(name.Text());
        return 0;
    });
}
