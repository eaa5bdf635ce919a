#include "profile/load.h"

#include "base/last_error.h"
#include "profile/first_byte_lock.h"
#include "profile/forms.h"
#include "profile/forms/packed_form.h"
#include "profile/job.h"
#include "profile/load_exception.h"

#include <cstring>
#include <new>

namespace vxut {
namespace {

bool Fail(ProfJob& job, int32_t code, DWORD systemError) {
    job.SetLastError(code, systemError);
    return false;
}

// A file that could not be read. One that ended before its size did fails without an error of the system's.
bool FailToRead(ProfJob& job, const clsFile& file) {
    const DWORD error = file.Failure() != ERROR_SUCCESS ? file.Failure() : ERROR_HANDLE_EOF;
    const bool isMemory = error == ERROR_NOT_ENOUGH_MEMORY || error == ERROR_OUTOFMEMORY;
    return isMemory ? Fail(job, PROF_ERR_MEMORY, ERROR_NOT_ENOUGH_MEMORY) : Fail(job, PROF_ERR_BUSY, error);
}

bool HasFailed(const clsFile& file) { return file.Failure() != ERROR_SUCCESS; }

bool LoadPacked(ProfJob& job, clsFile& file) {
    job.SetLoadedPacked();
    return LoadPackedProfile(job, file);
}

// Fills the tree. Of a file that cannot be read to its end nothing stays, whatever was wrong with its text.
bool ReadForm(ProfJob& job, const scForm& form, clsProfLineReader& reader) {
    try {
        clsProfileInput input(reader);
        form.read(input, static_cast<int>(job.NestingLevel()) - 1, job.Root());
    } catch (const clsLoadException&) {
        if (reader.Finish()) throw;
    }
    if (reader.Finish()) return true;
    job.Root().Empty();
    return false;
}

// Chooses the form by the first line and reads the file.
bool LoadPlain(ProfJob& job, clsFile& file, UtfType encoding) {
    clsProfLineReader reader(file, encoding);
    const String firstLine = reader.FirstLine();
    if (reader.HasFailed()) return FailToRead(job, file);
    const scForm& form = FormOfFile({firstLine.Text(), job.Root().Name()});
    return ReadForm(job, form, reader) || FailToRead(job, file);
}

// A fragment inside a larger text is UTF-16 and begins at the stream's position. The encoding probe runs only
// because streams may count on it; its result is ignored.
bool LoadFragment(ProfJob& job, clsFile& file) {
    const int64_t start = file.GetPosition();
    if (start < 0) return FailToRead(job, file);
    file.GetUTFType();
    file.ForgetFailure();
    file.SetPosition(start);
    if (HasFailed(file)) return FailToRead(job, file);
    return LoadPlain(job, file, kUtf16LittleEndian);
}

bool LoadWhole(ProfJob& job, clsFile& file) {
    char magic[kPackedMagicSize];
    file.SetPosition(0);
    const bool hasMagic = file.Read(magic, kPackedMagicSize) == kPackedMagicSize;
    if (HasFailed(file)) return FailToRead(job, file);
    if (!hasMagic) return false;
    if (std::memcmp(magic, kPackedMagic, kPackedMagicSize) == 0) return LoadPacked(job, file);
    file.SetPosition(0);
    const UtfType encoding = file.GetUTFType();
    return HasFailed(file) ? FailToRead(job, file) : LoadPlain(job, file, encoding);
}

} // namespace

bool LoadProfile(ProfJob& job, clsFile& file) {
    try {
        file.ForgetFailure();
        const clsFirstByteLock lock(file);
        if (!lock.IsHeld()) return Fail(job, PROF_ERR_BUSY, ErrorOfFailedCall());
        return job.NestingLevel() == 0 ? LoadWhole(job, file) : LoadFragment(job, file);
    } catch (const clsLoadException&) {
        return Fail(job, PROF_ERR_FORMAT, ERROR_INVALID_DATA);
    } catch (const std::bad_alloc&) {
        job.Root().Empty();
        return Fail(job, PROF_ERR_MEMORY, ERROR_NOT_ENOUGH_MEMORY);
    }
}

} // namespace vxut
