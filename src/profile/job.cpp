#include "profile/job.h"

#include "files/path.h"
#include "files/sibling_file.h"
#include "profile/load.h"

#include <algorithm>

namespace vxut {
namespace {

// Levels are depths, to which more is added. No text is as deep as this.
constexpr uint32_t kMaxNestingLevel = 1u << 24;

} // namespace

void ProfJob::OpenShared(const wchar_t* name, const scPatience& patience) {
    if (name) OpenFile(name, {kAccessRead, kDispositionOpenExisting, kShareRead}, patience);
}

void ProfJob::OpenExclusive(const wchar_t* name, const scPatience& patience) {
    keepsFile_ = true;
    if (name) OpenFile(name, {kAccessReadWrite, kDispositionOpenAlways, kShareRead}, patience);
}

void ProfJob::OpenFile(const wchar_t* name, const scOpenArguments& arguments, const scPatience& patience) {
    fileName_ = name;
    if (!IsFileNameAllowed(FilePart(fileName_))) return SetLastError(PROF_ERR_OPEN, ERROR_INVALID_NAME);
    file_ = std::make_unique<clsFile>();
    const DWORD error = OpenPatiently(*file_, fileName_, arguments, patience);
    if (error == ERROR_SUCCESS) {
        if (keepsFile_) clsSiblingFile::RemoveLeftovers(file_->Handle());
        return LoadFile();
    }
    file_.reset();
    const int32_t code = keepsFile_ ? PROF_ERR_SAVE : PROF_ERR_OPEN;
    SetLastError(error == ERROR_SHARING_VIOLATION ? PROF_ERR_BUSY : code, error);
}

void ProfJob::LoadFile() {
    const int64_t size = file_->GetSize();
    const bool isLoaded = size == 0 || (size > 0 && LoadProfile(*this, *file_));
    // A file whose size is unknown, or that is too short to be recognised.
    if (!isLoaded && lastError_ == PROF_OK)
        SetLastError(PROF_ERR_BUSY, size < 0 ? file_->Failure() : ERROR_HANDLE_EOF);
    if (!isLoaded || !keepsFile_) file_.reset();
}

// A stream is kept even if it could not be read.
void ProfJob::OpenStream(IStream* stream, uint32_t nestingLevel) {
    keepsFile_ = true;
    nestingLevel_ = std::min(nestingLevel, kMaxNestingLevel);
    if (!stream) return;
    file_ = std::make_unique<clsFile>();
    if (file_->OpenOnStream(stream) == 0) {
        LoadProfile(*this, *file_);
        return;
    }
    file_.reset();
    SetLastError(PROF_ERR_OPEN, ERROR_INVALID_HANDLE);
}

bool ProfJob::OwnsFile(const wchar_t* name) const {
    return file_ && (!name || IString(file_->DisplayName()).CompareTo(name) == 0);
}

} // namespace vxut
