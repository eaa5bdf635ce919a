#include "profile/save_file.h"

#include "base/last_error.h"
#include "files/overwrite.h"
#include "files/path.h"
#include "files/sibling_file.h"
#include "profile/first_byte_lock.h"

#include <utility>

namespace vxut {
namespace {

constexpr scOpenArguments kToProve{kAccessWrite, kDispositionOpenExisting, kShareNone};
constexpr scOpenArguments kToOverwrite{kAccessReadWrite, kDispositionOpenExisting, kShareNone};
constexpr scOpenArguments kToCreate{kAccessReadWrite, kDispositionOpenAlways, kShareNone};
constexpr scOpenArguments kToKeep{kAccessReadWrite, kDispositionOpenExisting, kShareRead};

DWORD OverwriteLocked(clsFile& target, const scImage& image) {
    const clsFirstByteLock lock(target);
    return lock.IsHeld() ? OverwriteContent(target, image.bytes, image.size) : ErrorOfFailedCall();
}

DWORD OverwriteLocked(clsFile& target, IclsImageSource& source) {
    scImage image{};
    const DWORD error = source.GetImage(image);
    return error == ERROR_SUCCESS ? OverwriteLocked(target, image) : error;
}

DWORD WriteSibling(clsSiblingFile& sibling, IclsImageSource& source) {
    return sibling.WriteWith([&](clsFile& file) { return source.WriteTo(file); });
}

// For files that cannot have a sibling. A file that did not exist before is deleted if it cannot be written.
DWORD OverwriteUnderName(const String& name, IclsImageSource& source, bool isNew) {
    scImage image{};
    DWORD error = source.GetImage(image);
    if (error != ERROR_SUCCESS) return error;
    clsFile target;
    error = OpenOnDisk(target, name, isNew ? kToCreate : kToOverwrite);
    if (error != ERROR_SUCCESS) return error;
    error = OverwriteLocked(target, image);
    const bool isOnlyCreated = error != ERROR_SUCCESS && isNew && target.GetSize() == 0;
    target.Close();
    if (isOnlyCreated) DeleteFileW(name.Text());
    return error;
}

// The target is opened alone first, which proves that it may be written and that nobody uses it. It is closed
// for the rename: should somebody open it in between, the rename fails and the attempt counts as a sharing
// violation.
DWORD SaveOnce(const String& name, IclsImageSource& source) {
    clsFile target;
    const DWORD opened = OpenOnDisk(target, name, kToProve);
    const bool isNew = opened == ERROR_FILE_NOT_FOUND;
    if (opened != ERROR_SUCCESS && !isNew) return opened;
    clsSiblingFile sibling(name, target.Handle());
    if (sibling.IsOpen()) {
        const DWORD written = WriteSibling(sibling, source);
        if (written != ERROR_SUCCESS) return written;
        target.Close();
        const DWORD placed = sibling.PutInPlace();
        if (placed == ERROR_SUCCESS) return ERROR_SUCCESS;
        if (isNew && placed == ERROR_ALREADY_EXISTS) return ERROR_SHARING_VIOLATION;
    }
    target.Close();
    return OverwriteUnderName(name, source, isNew);
}

struct Exchanged {
    bool isInPlace;    // the sibling is
    DWORD reopenError; // ERROR_SUCCESS if the kept file is open again
};

// Exchanges the kept file for the sibling and opens it again. Neither the old handle nor that of the sibling
// can stay: a file that is open cannot be replaced, and the right to delete, which the rename needs, keeps
// readers out. While somebody has taken the file in between, this is tried again. Nothing here allocates
// memory.
Exchanged Exchange(clsFile& kept, clsSiblingFile& sibling, const scPatience& patience) {
    const String name = kept.Name();
    bool isInPlace = false;
    const DWORD error = RepeatPatiently(patience, [&]() -> DWORD {
        kept.Close();
        isInPlace = isInPlace || sibling.PutInPlace() == ERROR_SUCCESS;
        clsAutoCloseFile target = sibling.OpenTarget();
        if (!target) return ErrorOfFailedCall();
        kept.TakeHandle(std::move(target), name);
        return ERROR_SUCCESS;
    });
    return {isInPlace, error};
}

} // namespace

DWORD clsMemoryImage::WriteTo(clsFile& file) {
    file.Write(image_.bytes, image_.size);
    return file.Failure();
}

DWORD SaveUnderName(const String& name, IclsImageSource& source, const scPatience& patience) {
    if (!IsFileNameAllowed(FilePart(name))) return ERROR_INVALID_NAME;
    return RepeatPatiently(patience, [&] { return SaveOnce(name, source); });
}

DWORD SaveIntoKept(clsFile& kept, IclsImageSource& source, const scPatience& patience) {
    if (!kept.IsOpen()) {
        const DWORD error = OpenPatiently(kept, String(kept.Name()), kToKeep, patience);
        if (error != ERROR_SUCCESS) return error;
    }
    if (kept.Stream()) return OverwriteLocked(kept, source);
    {
        clsSiblingFile sibling(kept.Name(), kept.Handle());
        if (sibling.IsOpen()) {
            if (!clsFirstByteLock(kept).IsHeld())
                return ErrorOfFailedCall(); // somebody may be reading the file
            const DWORD written = WriteSibling(sibling, source);
            if (written != ERROR_SUCCESS) return written;
            const Exchanged exchanged = Exchange(kept, sibling, patience);
            if (exchanged.isInPlace) return ERROR_SUCCESS;
            if (!kept.IsOpen()) return exchanged.reopenError;
        }
    }
    return OverwriteLocked(kept, source);
}

} // namespace vxut
