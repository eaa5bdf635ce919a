#include "profile/save.h"

#include "base/owners.h"
#include "files/global_lock.h"
#include "files/overwrite.h"
#include "profile/forms/packed_form.h"
#include "profile/job.h"
#include "profile/save_file.h"

#include <new>
#include <optional>

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

    // The content, which must not change any more. Returns the system's error.
    DWORD GetContent(scImage& image) {
        HGLOBAL memory = nullptr;
        const HRESULT result = GetHGlobalFromStream(file_.Stream(), &memory);
        if (FAILED(result)) return SystemErrorOf(result);
        const int64_t size = file_.GetSize();
        block_.emplace(size > 0 ? memory : nullptr);
        if (size > 0 && !block_->Pointer()) return ERROR_NOT_ENOUGH_MEMORY;
        image = {block_->Pointer(), size};
        return size >= 0 ? ERROR_SUCCESS : file_.Failure();
    }

private:
    clsFile file_;
    std::optional<clsGlobalLock> block_;
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

// A tree in one form. It is made in memory only for targets that need that.
class TreeImage : public IclsImageSource {
public:
    TreeImage(ProfJob& job, const scForm& form) : job_(job), form_(form) {}

    DWORD WriteTo(clsFile& file) override {
        if (job_.Root().isEmpty()) return ERROR_SUCCESS;
        clsProfOutput output(file);
        if (WriteRoot(job_, *form_.writer, form_.startDepth, output)) return ERROR_SUCCESS;
        if (output.Error() != ERROR_SUCCESS) return output.Error();
        return file.Failure() != ERROR_SUCCESS ? file.Failure() : ERROR_WRITE_FAULT;
    }
    DWORD GetImage(scImage& image) override {
        memory_.emplace();
        const DWORD error = SerialiseProfile(job_, *form_.writer, form_.startDepth, memory_->File());
        return error == ERROR_SUCCESS ? memory_->GetContent(image) : error;
    }

private:
    ProfJob& job_;
    const scForm& form_;
    std::optional<MemoryFile> memory_;
};

using PackImage = bool (*)(clsFile& image, clsFile& target);

// Calls use(IclsImageSource&) with the bytes of a save. Packed ones are all in memory by then.
template <class Use>
DWORD WithImage(ProfJob& job, const scForm& form, PackImage pack, Use use) {
    if (!pack) {
        TreeImage image(job, form);
        return use(image);
    }
    MemoryFile image, packed;
    DWORD error = SerialiseProfile(job, *form.writer, form.startDepth, image.File());
    if (error != ERROR_SUCCESS) return error;
    image.File().SetPosition(0);
    if (!pack(image.File(), packed.File())) return ERROR_NOT_ENOUGH_MEMORY;
    scImage content{};
    error = packed.GetContent(content);
    if (error != ERROR_SUCCESS) return error;
    clsMemoryImage source(content);
    return use(source);
}

// What all saves share: save(IclsImageSource&) brings the bytes to their target. failure is the code for what
// it may return.
template <class Save>
scOutcome SaveImage(ProfJob& job, uint32_t format, PackImage packer, int32_t failure, Save save) {
    const scForm& form = FormOfFormat(format);
    const PackImage pack = WantsPacked(job, format) ? packer : nullptr;
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

scOutcome SaveProfile(ProfJob& job, const wchar_t* name, uint32_t format) {
    return SaveImage(job, format, SavePackedToFile, PROF_ERR_SAVE, [&](IclsImageSource& source) {
        if (job.OwnsFile(name)) return SaveIntoKept(*job.File(), source);
        return SaveUnderName(name ? String(name) : job.FileName(), source);
    });
}

scOutcome SaveProfileToStream(ProfJob& job, IStream* stream, uint32_t format) {
    clsFile* const kept = job.File();
    if (!kept && !stream) return {PROF_ERR_SAVE, ERROR_INVALID_HANDLE};
    const bool isForKept = kept && (!stream || stream == kept->Stream());
    return SaveImage(job, format, SavePackedToStream, PROF_ERR_WRITE, [&](IclsImageSource& source) {
        if (isForKept) return SaveIntoKept(*kept, source);
        scImage image{};
        const DWORD error = source.GetImage(image);
        if (error != ERROR_SUCCESS) return error;
        clsFile wrapped(stream);
        return OverwriteContent(wrapped, image.bytes, image.size);
    });
}

} // namespace vxut
