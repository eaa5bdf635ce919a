#include "profile/save.h"

#include "base/owners.h"
#include "files/global_lock.h"
#include "files/overwrite.h"
#include "profile/job.h"
#include "profile/save_file.h"

#include <new>

namespace vxut {
namespace {

bool WantsPacked(const ProfJob& job, uint32_t format) {
    return (format & PROF_FORMAT_PACKED) != 0 ||
           ((format & PROF_FORMAT_KEEP_PACKED) != 0 && job.IsLoadedPacked());
}

// A file in memory.
class MemoryFile {
public:
    MemoryFile() {
        clsAutoRelease<IStream*> stream;
        if (FAILED(CreateStreamOnHGlobal(nullptr, TRUE, stream.Receive()))) throw std::bad_alloc();
        file_.OpenOnStream(stream.Get());
    }

    clsFile& File() noexcept { return file_; }

    // Calls use(scImage) with the content, and returns what it returns. The system's error if there is no
    // content.
    template <class Use>
    DWORD UseContent(Use use) {
        HGLOBAL memory = nullptr;
        const HRESULT result = GetHGlobalFromStream(file_.Stream(), &memory);
        if (FAILED(result)) return SystemErrorOf(result);
        const int64_t size = file_.GetSize();
        const clsGlobalLock block(size > 0 ? memory : nullptr);
        if (size > 0 && !block.Pointer()) return ERROR_NOT_ENOUGH_MEMORY;
        return size >= 0 ? use(scImage{block.Pointer(), size}) : file_.Failure();
    }

private:
    clsFile file_;
};

// Writes root and, at level 0, what the form puts around it. Without a file the output only counts.
bool WriteRoot(ProfJob& job, const IclsFormWriter& writer, int startDepth, clsProfOutput& output) {
    const bool isWhole = job.NestingLevel() == 0;
    const int depth = isWhole ? startDepth : static_cast<int>(job.NestingLevel());
    if (isWhole) writer.WriteHeader(output);
    if (!ProfWriteList(job.Root(), depth, output, writer)) return false;
    if (isWhole) writer.WriteTrailer(output);
    return output.Flush();
}

using PackImage = bool (*)(clsFile& image, clsFile& target);

// Calls use(scImage) with the bytes of a save, once they are all in memory.
template <class Use>
DWORD WithImage(ProfJob& job, const scForm& form, PackImage pack, Use use) {
    MemoryFile image;
    const DWORD error = SerialiseProfile(job, *form.writer, form.startDepth, image.File());
    if (error != ERROR_SUCCESS) return error;
    if (!pack) return image.UseContent(use);
    MemoryFile packed;
    image.File().SetPosition(0);
    return pack(image.File(), packed.File()) ? packed.UseContent(use) : ERROR_NOT_ENOUGH_MEMORY;
}

// What all saves share: save(scImage) brings the image to its target. failure is the code for what it may
// return.
template <class Save>
scSaveResult SaveImage(ProfJob& job, uint32_t format, PackImage packer, int32_t failure, Save save) {
    const scForm& form = FormOfFormat(format);
    const PackImage pack = WantsPacked(job, format) ? packer : nullptr;
    if (!form.writer || (WantsPacked(job, format) && !packer)) return {PROF_ERR_FORMAT, ERROR_NOT_SUPPORTED};
    DWORD error = ERROR_SUCCESS;
    try {
        error = WithImage(job, form, pack, save);
    } catch (const std::bad_alloc&) {
        error = ERROR_NOT_ENOUGH_MEMORY;
    }
    return {error == ERROR_SUCCESS ? PROF_OK : failure, error};
}

} // namespace

DWORD SerialiseProfile(ProfJob& job, const IclsFormWriter& writer, int startDepth, clsFile& target) {
    int64_t end = 0;
    target.ForgetFailure();
    target.SetPosition(0);
    if (!job.Root().isEmpty() && target.Failure() == ERROR_SUCCESS) {
        clsProfOutput size;
        if (!WriteRoot(job, writer, startDepth, size)) return size.Error();
        clsProfOutput output(target);
        if (target.Extend(size.Size()) && WriteRoot(job, writer, startDepth, output)) end = output.Size();
        if (output.Error() != ERROR_SUCCESS) return output.Error();
    }
    if (target.Failure() == ERROR_SUCCESS && target.SetPosition(end) == end) target.SetEOF();
    return target.Failure();
}

scSaveResult SaveProfile(ProfJob& job, const wchar_t* name, uint32_t format) {
    return SaveImage(job, format, PackedForm().saveToFile, PROF_ERR_SAVE, [&](const scImage& image) {
        if (job.OwnsFile(name)) return SaveIntoKept(*job.File(), image);
        return SaveUnderName(name ? String(name) : job.FileName(), image);
    });
}

scSaveResult SaveProfileToStream(ProfJob& job, IStream* stream, uint32_t format) {
    clsFile* const kept = job.File();
    if (!kept && !stream) return {PROF_ERR_SAVE, ERROR_INVALID_HANDLE};
    const bool isForKept = kept && (!stream || stream == kept->Stream());
    return SaveImage(job, format, PackedForm().saveToStream, PROF_ERR_WRITE, [&](const scImage& image) {
        if (isForKept) return SaveIntoKept(*kept, image);
        clsFile wrapped(stream);
        return OverwriteContent(wrapped, image.bytes, image.size);
    });
}

} // namespace vxut
