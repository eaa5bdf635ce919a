// A profile job: the state behind a job handle.
#pragma once

#include "base/owners.h"
#include "files/file.h"
#include "prof/codes.h"
#include "profile/item_list.h"
#include "profile/open_file.h"
#include "text/string.h"

#include <objbase.h>

#include <atomic>
#include <cstdint>
#include <string_view>

namespace vxut {

// Owns the tree and, for exclusive and stream jobs, the file. An open that fails leaves an empty or
// incomplete tree and the reason in LastError() and SystemError(). A job belongs to one thread at a time;
// only its references are counted atomically.
class ProfJob {
public:
    explicit ProfJob(std::wstring_view rootName = L"/") : root_(rootName) {}
    ProfJob(const ProfJob&) = delete;
    ProfJob& operator=(const ProfJob&) = delete;

    // Reads a file and closes it. A null name makes an empty profile.
    void OpenShared(const wchar_t* name, const scPatience& patience = kOpenPatience);
    // Reads a file, which is created if missing, and keeps it open.
    void OpenExclusive(const wchar_t* name, const scPatience& patience = kOpenPatience);
    // Reads a stream and keeps it, adding a reference. Null makes an empty profile. Above level 0 the profile
    // is a fragment of a larger text.
    void OpenStream(IStream* stream, uint32_t nestingLevel);

    clsItemList& Root() noexcept { return root_; }
    int32_t LastError() const noexcept { return lastError_; }
    // The system error that caused LastError(): ERROR_SUCCESS if that is PROF_OK.
    DWORD SystemError() const noexcept { return lastError_ == PROF_OK ? ERROR_SUCCESS : systemError_; }
    void SetLastError(int32_t code, DWORD systemError) noexcept {
        lastError_ = code;
        systemError_ = systemError;
    }
    uint32_t NestingLevel() const noexcept { return nestingLevel_; }
    bool IsLoadedPacked() const noexcept { return loadedPacked_; }
    void SetLoadedPacked() noexcept { loadedPacked_ = true; }

    const String& FileName() const noexcept { return fileName_; }
    // The file or stream that the job keeps; null if it has none.
    clsFile* File() const noexcept { return file_.get(); }
    // Whether a save under this name is one into the file that the job keeps.
    bool OwnsFile(const wchar_t* name) const;

    void AddReference() noexcept { ++references_; }
    // Returns true if it was the last reference.
    bool DropReference() noexcept { return --references_ <= 0; }

private:
    void OpenFile(const wchar_t* name, const scOpenArguments& arguments, const scPatience& patience);
    void LoadFile();

    String fileName_;
    bool keepsFile_ = false;
    clsItemList root_;
    int32_t lastError_ = PROF_OK;
    DWORD systemError_ = ERROR_SUCCESS;
    clsGenericAutoDelete<clsFile> file_;
    uint32_t nestingLevel_ = 0;
    std::atomic<int32_t> references_{1};
    bool loadedPacked_ = false;
};

} // namespace vxut
