#include "profile/forms/packed_form.h"

#include "base/last_error.h"
#include "encoding/deflate.h"
#include "encoding/pack_file.h"
#include "files/temp_file.h"
#include "profile/job.h"
#include "profile/load.h"

#include <algorithm>
#include <cstring>
#include <memory>

namespace vxut {
namespace {

constexpr int kMaxNesting = 8;
// The bounds of what one file may expand to, all its images together. No deflate stream expands by more than
// the ratio, so a file with one image always loads, whatever it holds; the spare bytes are for images in
// images of small profiles.
constexpr int64_t kMaxRatio = 1032;
constexpr int64_t kSpareBytes = 0x1000000;
constexpr int64_t kMaxBytes = 0x100000000;

bool Fail(ProfJob& job, int32_t code, DWORD error) {
    job.SetLastError(code, error);
    return false;
}

// A failure of a system call; or one of the image, which exceeds the bounds.
bool FailToUnpack(ProfJob& job, DWORD error) {
    if (error == ERROR_FILE_TOO_LARGE) return Fail(job, PROF_ERR_FORMAT, error);
    const bool isMemory = error == ERROR_NOT_ENOUGH_MEMORY || error == ERROR_OUTOFMEMORY;
    return Fail(job, isMemory ? PROF_ERR_MEMORY : PROF_ERR_BUSY, error);
}

// What all images of a file may expand to; -1 if its size is not known.
int64_t BytesAllowed(clsFile& file) {
    const int64_t size = file.GetSize();
    if (size < 0) return -1;
    return size < (kMaxBytes - kSpareBytes) / kMaxRatio ? size * kMaxRatio + kSpareBytes : kMaxBytes;
}

// Moves behind the magic. Returns whether there is one.
bool PassMagic(clsFile& file) {
    char magic[kPackedMagicSize];
    file.SetPosition(0);
    return file.Read(magic, kPackedMagicSize) == kPackedMagicSize &&
           std::memcmp(magic, kPackedMagic, kPackedMagicSize) == 0;
}

bool WriteImage(clsFile& image, clsFile& target, int64_t length) {
    return target.Write(kPackedMagic, kPackedMagicSize) == kPackedMagicSize &&
           UtilPackFile(target, image, kDeflateProfiles, nullptr, length) == Z_OK;
}

} // namespace

// A loop, not a recursion through LoadProfile(): two temporary files at a time, and the bounds are local.
bool LoadPackedProfile(ProfJob& job, clsFile& file) {
    int64_t allowed = BytesAllowed(file);
    if (allowed < 0) return FailToUnpack(job, file.Failure());
    clsFile* image = &file;
    std::unique_ptr<clsFileRWTemp> content;
    for (int nesting = 0; image == &file || PassMagic(*image); ++nesting) {
        if (nesting == kMaxNesting) return FailToUnpack(job, ERROR_FILE_TOO_LARGE);
        auto inner = std::make_unique<clsFileRWTemp>(L"PRF", L"prf");
        if (!inner->IsOpen()) return FailToUnpack(job, ErrorOfFailedCall());
        const scUnpackResult result = UnpackFile(*inner, *image, kToEnd, allowed);
        if (result.error != ERROR_SUCCESS) return FailToUnpack(job, result.error);
        allowed -= result.bytes;
        content = std::move(inner);
        image = content.get();
    }
    return image->Failure() == ERROR_SUCCESS ? LoadProfile(job, *image) : FailToUnpack(job, image->Failure());
}

bool SavePackedToFile(clsFile& image, clsFile& target) { return WriteImage(image, target, kToEnd); }
bool SavePackedToStream(clsFile& image, clsFile& target) { return WriteImage(image, target, 0); }

} // namespace vxut
