#include "docinfo/formats.h"

#include "docinfo/readers/readers.h"
#include "files/path.h"
#include "util/docinfo_formats.h"

#include <cstdint>
#include <cstring>
#include <cwchar>

namespace vxut {
namespace {

// The names of the table are those of the readers, except for two.

int ReadTiffImage(clsDocu& document, clsDocFile& file) { return ReadTiff(document, file, 0); }

// An image without properties is no failure.
int ReadJpegImage(clsDocu& document, clsDocFile& file) {
    ReadJpeg(document, file);
    return 0;
}

struct Format {
    const wchar_t* extensions;
    uint32_t magic;
    uint32_t mask;
    int (*read)(clsDocu& document, clsDocFile& file);
};

#define VXUT_FORMAT(reader, extensions, magic, mask, name, properties, limits) \
    {extensions, magic, mask, Read##reader},
constexpr Format kFormats[] = {UTIL_DOCINFO_FORMATS(VXUT_FORMAT)};
#undef VXUT_FORMAT

struct StorageFormat {
    const wchar_t* extension;
    int (*read)(clsDocu& document, const String& path);
};

#define VXUT_STORAGE(reader, extension, name, properties, limits) {extension, Read##reader},
constexpr StorageFormat kStorages[] = {UTIL_DOCINFO_STORAGES(VXUT_STORAGE)};
#undef VXUT_STORAGE

constexpr uint8_t kStorageMagic[] = {0xD0, 0xCF, 0x11, 0xE0, 0xA1, 0xB1, 0x1A, 0xE1};

// Whether an extension is one of a list that blanks separate.
bool IsAmong(const wchar_t* extensions, const String& extension) {
    const auto length = static_cast<size_t>(extension.Length());
    if (length == 0) return false;
    while (*extensions) {
        const size_t units = std::wcscspn(extensions, L" ");
        if (units == length && _wcsnicmp(extensions, extension.Text(), length) == 0) return true;
        extensions += units + std::wcsspn(extensions + units, L" ");
    }
    return false;
}

int ReadStorage(clsDocu& document, const String& extension) {
    for (const StorageFormat& format : kStorages)
        if (*format.extension == 0 || IsAmong(format.extension, extension))
            return format.read(document, document.ResolvedPath);
    return -1;
}

// The first bytes of the file. Zeros take the place of bytes that the file does not have.
struct Head {
    uint8_t bytes[sizeof kStorageMagic] = {};
    int64_t count = 0;

    explicit Head(clsDocFile& file) {
        file.SetPosition(0);
        count = file.Read(bytes, sizeof bytes);
    }
    bool IsStorage() const { return std::memcmp(bytes, kStorageMagic, sizeof bytes) == 0; }
    uint32_t Magic() const {
        uint32_t magic;
        std::memcpy(&magic, bytes, sizeof magic);
        return magic;
    }
};

// By content the outcome of the reader does not matter.
void ReadByMagic(clsDocu& document, clsDocFile& file, const Head& head) {
    if (head.count < static_cast<int64_t>(sizeof head.Magic())) return;
    for (const Format& format : kFormats) {
        if (format.mask == 0 || (head.Magic() & format.mask) != format.magic) continue;
        format.read(document, file);
        return;
    }
}

int ReadByFormat(clsDocu& document, clsDocFile& file, const Head& head, const String& extension) {
    for (const Format& format : kFormats)
        if (IsAmong(format.extensions, extension)) return format.read(document, file);
    ReadByMagic(document, file, head);
    return 0;
}

} // namespace

int ReadProperties(clsDocu& document, clsDocFile& file) {
    const String path = document.ResolvedPath;
    if (ReadShellIndex(document, path) >= 0 || ReadPropertyStore(document, path) >= 0) return 0;
    const Head head(file);
    const String extension = Extension(path);
    if (head.IsStorage()) {
        file.Close(); // the storage may be opened exclusively
        if (ReadStorage(document, extension) >= 0) return 0;
        if (file.Open(path, kAccessRead, kDispositionOpenExisting, kShareReadWrite) != 0) return -1;
    }
    return ReadByFormat(document, file, head, extension);
}

} // namespace vxut
