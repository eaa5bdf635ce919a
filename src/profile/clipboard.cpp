#include "profile/clipboard.h"

#include "base/last_error.h"
#include "files/global_lock.h"
#include "files/temp_file.h"
#include "profile/job.h"
#include "profile/load.h"
#include "profile/save.h"

#include <atomic>
#include <cstring>

namespace vxut {
namespace {

constexpr wchar_t kFormatName[] = L"QzrProfCBFormat";
constexpr wchar_t kNotice[] = L"PROF data available";

// Keeps the clipboard open for a scope.
class Clipboard {
public:
    explicit Clipboard(HWND window) : isOpen_(OpenClipboard(window) != 0) {}
    ~Clipboard() {
        if (isOpen_) CloseClipboard();
    }
    Clipboard(const Clipboard&) = delete;
    Clipboard& operator=(const Clipboard&) = delete;

    bool IsOpen() const noexcept { return isOpen_; }

private:
    const bool isOpen_;
};

// Puts a block of memory, filled by fill(bytes), on the clipboard.
template <class Fill>
void PutBlock(UINT format, UINT flags, SIZE_T size, Fill fill) {
    clsGlobalLock block(GlobalAlloc(flags, size), true);
    if (!block.Pointer() || !fill(block.Pointer())) return;
    const HGLOBAL memory = block.Detach();
    if (!SetClipboardData(format, memory)) GlobalFree(memory);
}

void PutImage(clsFile& image, HWND window) {
    const int64_t size = image.GetSize();
    if (size < 0 || image.SetPosition(0) != 0 || image.Failure() != ERROR_SUCCESS) return;
    const Clipboard clipboard(window);
    if (!clipboard.IsOpen()) return;
    PutBlock(ProfileClipboardFormat(), GHND | GMEM_DDESHARE, static_cast<SIZE_T>(size) + 1,
             [&](void* bytes) { return image.Read(bytes, size) == size; });
    // Wide text under the number of narrow text: applications that paste it see the first letter, and rely on
    // that.
    PutBlock(CF_TEXT, GMEM_MOVEABLE | GMEM_DDESHARE, sizeof(kNotice), [](void* bytes) {
        std::memcpy(bytes, kNotice, sizeof(kNotice));
        return true;
    });
}

// Copies the clipboard's profile to a file, and sets the job's last error.
void GetImage(ProfJob& job, clsFile& image, HWND window) {
    const Clipboard clipboard(window);
    if (!clipboard.IsOpen()) return job.SetLastError(PROF_ERR_OPEN, ErrorOfFailedCall());
    if (!IsClipboardFormatAvailable(ProfileClipboardFormat()))
        return job.SetLastError(PROF_ERR_OPEN, ERROR_FILE_NOT_FOUND);
    const clsGlobalLock block(GetClipboardData(ProfileClipboardFormat()));
    if (!block.Pointer()) return job.SetLastError(PROF_ERR_MEMORY, ERROR_NOT_ENOUGH_MEMORY);
    const auto size = static_cast<int64_t>(GlobalSize(block.Handle()));
    if (image.Write(block.Pointer(), size) != size) job.SetLastError(PROF_ERR_OPEN, image.Failure());
}

} // namespace

UINT ProfileClipboardFormat() {
    static std::atomic<UINT> format{0}; // 0: not registered yet, or the system could not
    if (format == 0) format = RegisterClipboardFormatW(kFormatName);
    return format;
}

void LoadFromClipboard(ProfJob& job, HWND window) {
    clsFileRWTemp image(L"Prf");
    if (!image.IsOpen()) return job.SetLastError(PROF_ERR_OPEN, ErrorOfFailedCall());
    GetImage(job, image, window);
    if (job.LastError() == PROF_OK) LoadProfile(job, image);
}

int32_t SaveToClipboard(ProfJob& job, HWND window, uint32_t format) {
    const scForm& form = FormOfFormat(format);
    if (!form.writer) return PROF_ERR_FORMAT;
    clsFileRWTemp image(L"Prf", L"tmp");
    if (!image.IsOpen()) return PROF_ERR_SAVE;
    if (SerialiseProfile(job, *form.writer, form.startDepth, image) != ERROR_SUCCESS) return PROF_ERR_WRITE;
    PutImage(image, window);
    return PROF_OK;
}

} // namespace vxut
