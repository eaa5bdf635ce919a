#include "encoding/zip_entry.h"

#include "base/debug.h"
#include "encoding/pack_file.h"
#include "encoding/zip_text.h"

#include <windows.h>

#include <memory>

namespace vxut {
namespace {

constexpr uint32_t kDeflateMode = 8; // the settings of zlib itself
constexpr uint32_t kMostCopiedAtOnce = 0x100000;
constexpr WORD kFirstDosDate = 0x0021; // 1980-01-01, for a time that DOS cannot express

struct DosTime {
    WORD date = kFirstDosDate;
    WORD time = 0;
};

DosTime DosTimeOf(const SYSTEMTIME& local) noexcept {
    FILETIME file;
    DosTime dos;
    if (!SystemTimeToFileTime(&local, &file) || !FileTimeToDosDateTime(&file, &dos.date, &dos.time))
        return {};
    return dos;
}

// Whether the bytes are those of the text, as far as it was converted, and fit into their field.
bool IsStorable(const String& text, const std::string& bytes) {
    return bytes.size() <= kZipMaxText && bytes.empty() == text.IsEmpty();
}

template <class Record>
std::string BytesOf(const Record& record) {
    return {reinterpret_cast<const char*>(&record), sizeof record};
}

bool WriteAll(clsFile& archive, const std::string& bytes, int part) {
    const auto size = static_cast<int64_t>(bytes.size());
    if (archive.Write(bytes.data(), size) == size) return true;
    DebugWrite(L"ERR: write error file '%s' (%d)", archive.DisplayName(), part);
    return false;
}

} // namespace

clsZIPFileEntry::clsZIPFileEntry(const String& name, const String& comment) : name_(name), comment_(comment) {
    if (name.Length() > kZipMaxText || comment.Length() > kZipMaxText) return;
    const bool isUtf8 = !IsZipOemText(name) || !IsZipOemText(comment);
    nameBytes_ = ZipBytes(name, isUtf8);
    commentBytes_ = ZipBytes(comment, isUtf8);
    hasValidTexts_ = IsStorable(name, nameBytes_) && IsStorable(comment, commentBytes_);
    header_.common.flags = isUtf8 ? kZipUtf8 : 0;
    header_.common.nameBytes = static_cast<uint16_t>(nameBytes_.size());
}

bool clsZIPFileEntry::Pack(clsFile& source) {
    const int64_t size = source.GetSize();
    if (size > kZipMaxSize) {
        DebugWrite(L"ERR: source size > 4GB");
        return false;
    }
    content_.emplace(L"ZIP");
    if (!PackInto(*content_, source, size)) return false;
    TakeTimeAndAttributes(source);
    return true;
}

// The size is asked for once, so that a source that grows meanwhile ends where its size says.
bool clsZIPFileEntry::PackInto(clsFile& target, clsFile& source, int64_t size) {
    const int64_t position = source.GetPosition();
    const int64_t length = position < 0 || size < position ? -1 : size - position;
    uint32_t crc = 0;
    const int code = length < 0 ? kPackFailed : UtilPackFile(target, source, kDeflateMode, &crc, length);
    const int64_t compressedSize = code == 0 ? target.GetPosition() : -1;
    if (compressedSize > kZipMaxSize) {
        DebugWrite(L"ERR: compressed size > 4GB");
        return false;
    }
    target.SetPosition(0);
    if (compressedSize < 0 || target.Failure() != ERROR_SUCCESS) {
        DebugWrite(L"ERR while compressing file '%s': %d", source.DisplayName(), code ? code : kPackFailed);
        return false;
    }
    header_.common.method = kZipDeflated;
    header_.common.crc = crc;
    header_.common.compressedSize = static_cast<uint32_t>(compressedSize);
    header_.common.size = static_cast<uint32_t>(length);
    return true;
}

void clsZIPFileEntry::TakeTimeAndAttributes(const clsFile& source) noexcept {
    BY_HANDLE_FILE_INFORMATION information;
    if (GetFileInformationByHandle(source.Handle(), &information)) {
        SetTime(information.ftLastWriteTime);
        attributes_ = information.dwFileAttributes;
        return;
    }
    SetPresentTimeSwapped();
    const DWORD attributes = GetFileAttributesW(source.Name().Text());
    attributes_ = attributes == INVALID_FILE_ATTRIBUTES ? 0 : attributes;
}

void clsZIPFileEntry::SetFolder(const FILETIME& written, DWORD attributes) noexcept {
    SetTime(written);
    attributes_ = attributes;
}

void clsZIPFileEntry::SetTime(const FILETIME& written) noexcept {
    SYSTEMTIME utc;
    SYSTEMTIME local;
    DosTime dos;
    if (FileTimeToSystemTime(&written, &utc))
        dos = DosTimeOf(SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local) ? local : utc);
    header_.common.date = dos.date;
    header_.common.time = dos.time;
}

// Date and time are exchanged for sources without a file handle: readers of such archives rely on it.
void clsZIPFileEntry::SetPresentTimeSwapped() noexcept {
    SYSTEMTIME now;
    GetLocalTime(&now);
    const DosTime dos = DosTimeOf(now);
    header_.common.time = dos.date;
    header_.common.date = dos.time;
}

bool clsZIPFileEntry::Write(clsFile& archive) {
    // An archive beyond the limit is reported once it is written; its offsets mean nothing.
    offset_ = static_cast<uint32_t>(archive.GetPosition());
    if (!WriteAll(archive, BytesOf(header_) + nameBytes_, 1)) return false;
    if (!content_) return true;
    if (CopyContent(archive)) return true;
    DebugWrite(L"ERR: write error file '%s' (%d)", archive.DisplayName(), 2);
    return false;
}

// Most contents are small: one read and one write cost less than the preparations for a large copy.
bool clsZIPFileEntry::CopyContent(clsFile& archive) {
    const uint32_t size = header_.common.compressedSize;
    if (size > kMostCopiedAtOnce) return archive.CopyFrom(*content_);
    const auto bytes = std::make_unique_for_overwrite<BYTE[]>(size);
    return content_->Read(bytes.get(), size) == size && archive.Write(bytes.get(), size) == size;
}

bool clsZIPFileEntry::WriteIndex(clsFile& archive) const {
    scZipIndexHeader index;
    index.common = header_.common;
    index.commentBytes = static_cast<uint16_t>(commentBytes_.size());
    index.attributes = attributes_;
    index.offset = offset_;
    return WriteAll(archive, BytesOf(index) + nameBytes_ + commentBytes_, 4);
}

int64_t clsZIPFileEntry::IndexBytes() const noexcept {
    return static_cast<int64_t>(sizeof(scZipIndexHeader) + nameBytes_.size() + commentBytes_.size());
}

} // namespace vxut
