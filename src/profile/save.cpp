#include "profile/save.h"

#include "base/owners.h"
#include "files/path.h"
#include "profile/first_byte_lock.h"
#include "profile/job.h"
#include "profile/open_file.h"

namespace vxut {
namespace {

bool WantsPacked(const ProfJob& job, uint32_t format) {
    return (format & kSavePacked) != 0 || ((format & kSaveKeepPacked) != 0 && job.IsLoadedPacked());
}

// An empty stream in memory.
clsAutoRelease<IStream*> MakeMemoryStream() {
    clsAutoRelease<IStream*> stream;
    CreateStreamOnHGlobal(nullptr, TRUE, stream.Receive());
    return stream;
}

// Writes root and, at level 0, what the form puts around it. Without a file the output only counts.
bool WriteRoot(ProfJob& job, const IclsFormWriter& writer, int startDepth, clsProfOutput& output) {
    const bool isWhole = job.NestingLevel() == 0;
    const int depth = isWhole ? startDepth : static_cast<int>(job.NestingLevel());
    if (isWhole) writer.WriteHeader(output);
    if (!ProfWriteList(job.Root(), depth, output, writer)) return false;
    if (isWhole) writer.WriteTrailer(output);
    return output.Flush();
}

// Makes room from the start of the file, so that it is extended once and a full disk is met before anything
// is overwritten. A file that cannot grow is put back; streams may refuse to be sized and still take the
// bytes.
bool Reserve(clsFile& target, int64_t bytes) {
    const int64_t size = target.GetSize();
    target.SetPosition(0);
    if (bytes <= size) return true;
    target.Extend(bytes);
    if (target.GetSize() >= bytes || target.Stream()) return true;
    target.SetPosition(size);
    target.SetEOF();
    return false;
}

// Replaces a file's contents. A file that the job keeps is grown first.
bool CopyImage(clsFile& image, clsFile& target, bool isKept) {
    if (isKept && !Reserve(target, image.GetSize())) return false;
    target.SetPosition(0);
    image.SetPosition(0);
    return target.CopyFrom(image);
}

bool PackImage(clsFile& image, clsFile& target) {
    target.SetPosition(0);
    image.SetPosition(0);
    return PackedForm().saveToFile(image, target);
}

// The file that a save goes to: the job's own, or a new one that is opened here. Null if there is none.
clsFile* TargetOf(ProfJob& job, const wchar_t* name, clsFile& opened) {
    if (job.OwnsFile(name)) return job.File();
    const String path = name ? String(name) : job.FileName();
    if (!IsFileNameAllowed(FilePart(path))) return nullptr;
    const scOpenArguments arguments{kAccessWrite, kDispositionCreateAlways, kShareNone};
    return OpenPatiently(opened, path, arguments, kSavePatience) == ERROR_SUCCESS ? &opened : nullptr;
}

} // namespace

bool SerialiseProfile(ProfJob& job, const IclsFormWriter& writer, int startDepth, clsFile& target) {
    int64_t end = 0;
    if (!job.Root().isEmpty()) {
        clsProfOutput size;
        WriteRoot(job, writer, startDepth, size);
        if (!Reserve(target, size.Size())) return false;
        target.SetPosition(0);
        clsProfOutput output(target);
        if (!WriteRoot(job, writer, startDepth, output)) return false;
        end = output.Size();
    }
    target.SetPosition(end);
    target.SetEOF();
    return true;
}

// The image in memory comes first, so that a tree that cannot be written costs no file.
int32_t SaveProfile(ProfJob& job, const wchar_t* name, uint32_t format) {
    const scForm& form = FormOfFormat(format);
    const bool isPacked = WantsPacked(job, format);
    if (!form.writer || (isPacked && !PackedForm().saveToFile)) return PROF_ERR_FORMAT;

    const clsAutoRelease<IStream*> memory = MakeMemoryStream();
    clsFile image(memory.Get());
    if (!SerialiseProfile(job, *form.writer, form.startDepth, image)) return PROF_ERR_SAVE;

    clsFile opened;
    clsFile* const target = TargetOf(job, name, opened);
    if (!target) return PROF_ERR_SAVE;
    const clsFirstByteLock lock(*target);
    if (!lock.IsHeld()) return PROF_ERR_SAVE;
    const bool isSaved =
        isPacked ? PackImage(image, *target) : CopyImage(image, *target, target == job.File());
    return isSaved ? PROF_OK : PROF_ERR_SAVE;
}

int32_t SaveProfileToStream(ProfJob& job, IStream* stream, uint32_t format) {
    const scForm& form = FormOfFormat(format);
    const bool isPacked = WantsPacked(job, format);
    if (!form.writer || (isPacked && !PackedForm().saveToStream)) return PROF_ERR_FORMAT;

    clsFile wrapped;
    clsFile* target = job.File();
    if (!target || (stream && stream != target->Stream())) {
        if (wrapped.OpenOnStream(stream) != 0) return PROF_ERR_SAVE;
        target = &wrapped;
    }
    if (!isPacked)
        return SerialiseProfile(job, *form.writer, form.startDepth, *target) ? PROF_OK : PROF_ERR_WRITE;

    const clsAutoRelease<IStream*> memory = MakeMemoryStream();
    clsFile image(memory.Get());
    if (!SerialiseProfile(job, *form.writer, form.startDepth, image)) return PROF_ERR_WRITE;
    image.SetPosition(0);
    return PackedForm().saveToStream(image, *target) ? PROF_OK : PROF_ERR_WRITE;
}

} // namespace vxut
