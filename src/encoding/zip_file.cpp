#include "encoding/zip_file.h"

#include "base/debug.h"
#include "encoding/zip_text.h"

#include <cstring>
#include <new>
#include <string>
#include <utility>

namespace vxut {

clsZIPFile::~clsZIPFile() { ReleaseEntries(); }

bool clsZIPFile::Create(const String& path, const String& comment) {
    comment_ = comment;
    return HasValidComment() && file_.Open(path, kAccessReadWrite, kDispositionCreateAlways, kShareNone) == 0;
}

bool clsZIPFile::CreateOnStream(IStream* stream, const String& comment) {
    comment_ = comment;
    return HasValidComment() && file_.OpenOnStream(stream) == 0;
}

bool clsZIPFile::HasValidComment() const {
    const size_t bytes = std::strlen(comment_.Narrow());
    if (bytes <= kZipMaxText && (bytes > 0 || comment_.IsEmpty())) return true;
    DebugWrite(L"ERR: comment of a ZIP file cannot be converted or is > 64KB");
    return false;
}

ZipResult clsZIPFile::AppendFile(const String& path, const String& comment, const String& name) {
    clsFile source(path, kAccessRead, kDispositionOpenExisting, kShareRead);
    return source.IsOpen() ? Append(source, comment, name) : kZipNoSource;
}

ZipResult clsZIPFile::Append(clsFile& source, const String& comment, const String& name) {
    auto entry = std::make_unique<clsZIPFileEntry>(ZipName(name, source.Name()), comment);
    if (entry->HasValidTexts() && !entry->Pack(source)) return kZipNoEntry;
    return Add(std::move(entry));
}

ZipResult clsZIPFile::Add(clsGenericAutoDelete<clsZIPFileEntry> entry) {
    if (!entry->HasValidTexts()) {
        DebugWrite(L"ERR: name or comment of a ZIP entry cannot be converted or is > 64KB");
        return kZipNoEntry;
    }
    if (!append(entry.get())) throw std::bad_alloc();
    [[maybe_unused]] const clsZIPFileEntry* const owned = entry.release(); // by the list
    return kZipOk;
}

ZipResult clsZIPFile::Close() {
    const bool isWritten = WriteAll();
    ReleaseEntries();
    file_.Close();
    return isWritten ? kZipOk : kZipWriteFailed;
}

bool clsZIPFile::WriteAll() {
    for (clsZIPFileEntry* entry : *this)
        if (!entry->Write(file_)) return false;
    const int64_t indexOffset = file_.GetPosition();
    int64_t indexBytes = 0;
    for (const clsZIPFileEntry* entry : *this) {
        if (!entry->WriteIndex(file_)) return false;
        indexBytes += entry->IndexBytes();
    }
    if (!WriteEnd(indexOffset, indexBytes)) return false;
    const int64_t size = file_.GetSize();
    if (size > kZipMaxSize) DebugWrite(L"ERR: ZIP file size > 4GB");
    // A position or size that the system could not tell has left wrong offsets behind.
    return size <= kZipMaxSize && file_.Failure() == ERROR_SUCCESS;
}

bool clsZIPFile::WriteEnd(int64_t indexOffset, int64_t indexBytes) {
    const std::string comment = comment_.Narrow();
    scZipEnd end;
    end.entriesOnDisk = end.entries = static_cast<uint16_t>(entries());
    end.indexBytes = static_cast<uint32_t>(indexBytes);
    end.indexOffset = static_cast<uint32_t>(indexOffset);
    end.commentBytes = static_cast<uint16_t>(comment.size());
    const std::string bytes = std::string(reinterpret_cast<const char*>(&end), sizeof end) + comment;
    const auto size = static_cast<int64_t>(bytes.size());
    if (file_.Write(bytes.data(), size) == size) return true;
    DebugWrite(L"ERR: write error file '%s' (5)", file_.DisplayName());
    return false;
}

void clsZIPFile::ReleaseEntries() noexcept {
    for (clsZIPFileEntry* entry : *this) delete entry;
    clear();
}

} // namespace vxut
