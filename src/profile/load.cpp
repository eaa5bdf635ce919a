#include "profile/load.h"

#include "profile/first_byte_lock.h"
#include "profile/forms.h"
#include "profile/job.h"
#include "profile/load_exception.h"

#include <cstring>
#include <new>

namespace vxut {
namespace {

constexpr int kMagicSize = scPackedForm::kMagicSize;

bool Fail(ProfJob& job, int32_t code) {
    job.SetLastError(code);
    return false;
}

bool LoadPacked(ProfJob& job, clsFile& file) {
    job.SetLoadedPacked();
    return PackedForm().load ? PackedForm().load(job, file) : Fail(job, PROF_ERR_FORMAT);
}

// Chooses the form by the first line and reads.
bool LoadPlain(ProfJob& job, clsFile& file, UtfType encoding) {
    clsProfLineReader reader(file, encoding);
    const String firstLine = reader.FirstLine();
    const scForm& form = FormOfFile({firstLine.Text(), job.Root().Name()});
    if (!form.read) return Fail(job, PROF_ERR_FORMAT);
    clsProfileInput input(reader);
    form.read(input, static_cast<int>(job.NestingLevel()) - 1, job.Root());
    return true;
}

// A fragment inside a larger text is UTF-16 and begins where the stream stands, whatever the stream's own
// probe makes of it.
bool LoadFragment(ProfJob& job, clsFile& file) {
    const int64_t start = file.GetPosition();
    file.GetUTFType();
    file.SetPosition(start);
    return LoadPlain(job, file, kUtf16LittleEndian);
}

bool LoadWhole(ProfJob& job, clsFile& file) {
    char magic[kMagicSize];
    file.SetPosition(0);
    if (file.Read(magic, kMagicSize) != kMagicSize) return false;
    if (memcmp(magic, PackedForm().magic, kMagicSize) == 0) return LoadPacked(job, file);
    file.SetPosition(0);
    return LoadPlain(job, file, file.GetUTFType());
}

} // namespace

bool LoadProfile(ProfJob& job, clsFile& file) {
    const clsFirstByteLock lock(file);
    if (!lock.IsHeld()) return false;
    try {
        return job.NestingLevel() == 0 ? LoadWhole(job, file) : LoadFragment(job, file);
    } catch (const clsLoadException&) {
        return Fail(job, PROF_ERR_FORMAT);
    } catch (const std::bad_alloc&) {
        job.Root().Empty();
        return Fail(job, PROF_ERR_MEMORY);
    }
}

} // namespace vxut
