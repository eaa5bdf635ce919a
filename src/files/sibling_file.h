// The new content of a file, written beside it and put in its place whole.
#pragma once

#include "files/file.h"

#include <cstdint>
#include <vector>

namespace vxut {

// A file in the folder of a target, which becomes the target by one rename: at any moment, also after the
// process was killed or the power failed, the target holds the whole old or the whole new content.
//
// The sibling takes over what belongs to the target and not to its content: attributes, time of creation and
// access list. It is marked for deletion until it is put in place, so that the system removes it when its
// process dies. One that survives all the same, after a power cut or because the process was killed between
// the last two steps, is removed with the next sibling of its target: a living owner keeps its sibling open,
// and nobody else can open it for deletion.
//
// No sibling is made for what a rename would change: a file with more than one name (hard links), with
// alternate streams, encrypted or compressed other than its folder, or with a reparse point of its own. The
// system's ReplaceFileW keeps more of them, but between its two renames there is no target at all.
class clsSiblingFile {
public:
    // path: the target's. target: a handle open on it with write access; invalid if there is no such file.
    // IsOpen() returns whether a sibling could be made.
    clsSiblingFile(const String& path, HANDLE target);
    clsSiblingFile(const clsSiblingFile&) = delete;
    clsSiblingFile& operator=(const clsSiblingFile&) = delete;
    // Removes a sibling that was not put in place.
    ~clsSiblingFile();

    // Removes what dead processes left beside a file that is open.
    static void RemoveLeftovers(HANDLE target);

    bool IsOpen() const noexcept { return file_.IsOpen(); }

    // Calls write(clsFile&), which writes the content to the empty file and returns the system's error, and
    // flushes it to the disk. Returns the system's error, ERROR_SUCCESS if all is there.
    template <class Write>
    DWORD WriteWith(Write write) {
        const DWORD error = write(file_);
        return error == ERROR_SUCCESS ? Flush() : error;
    }

    // Makes the sibling the target, which must not be open. Returns the system's error, ERROR_SUCCESS if it
    // is done. The sibling is closed then; after a failure it may be tried again.
    DWORD PutInPlace();

    // Opens the target for reading and writing, shared with readers. Returns an invalid handle with the
    // thread's last error set if that fails.
    clsAutoCloseFile OpenTarget() const noexcept;

private:
    DWORD Flush() noexcept;
    bool CanReplace(HANDLE target);
    void Create(HANDLE target);
    bool Mark(bool forDeletion) noexcept;
    void Remove() noexcept;

    String path_; // of the target
    DWORD targetAttributes_ = 0;
    FILE_BASIC_INFO traits_{}; // what the sibling takes over
    std::vector<BYTE> rename_; // made before anything of the target's is touched
    clsFile file_;
    bool isMarked_ = false;
};

} // namespace vxut
