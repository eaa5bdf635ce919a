#include "profile/embedded_data.h"

#include "base/last_error.h"
#include "encoding/text_encoding.h"
#include "prof/codes.h"
#include "profile/item_access.h"
#include "profile/save_file.h"

namespace vxut {
namespace {

constexpr scPatience kOneAttempt{0, [] {}};

// Calls write(text), which returns the system's error, with a value that is not empty.
template <class Write>
scOutcome WithValue(const clsItem* item, Write write) {
    if (!item || item->Value().empty()) return {PROF_ERR_NOT_FOUND, ERROR_NOT_FOUND};
    const DWORD error = write(item->Value());
    return {error == ERROR_SUCCESS ? PROF_OK : PROF_ERR_WRITE, error};
}

} // namespace

String EncodeFileNamed(const String& name, const String& password, DWORD& error) {
    clsFile file(name, kAccessRead, kDispositionOpenExisting, kShareRead);
    if (file.IsOpen()) return UtilEncodeFile(file, true, password, &error);
    error = ErrorOfFailedCall();
    return {};
}

DWORD WriteDecodedFile(const String& name, std::wstring_view text, const String& password) {
    scByteBlock block;
    if (!DecodeText(text, password, block)) return ERROR_INVALID_DATA;
    clsMemoryImage image({block.data.get(), static_cast<int64_t>(block.size)});
    return SaveUnderName(name, image, kOneAttempt);
}

// The file is closed before the tree is touched: a list handle of the host's may be invalid.
DWORD AppendFile(const scPlace& place, const wchar_t* path, const String& password, const String& fileName) {
    DWORD error = ERROR_SUCCESS;
    const String text = EncodeFileNamed(fileName, password, error);
    AppendText(place, path, text.Text());
    return error;
}

DWORD AppendStream(const scPlace& place, const wchar_t* path, const String& password, IStream* stream) {
    clsFile file(stream);
    DWORD error = ERROR_INVALID_HANDLE;
    const String text = file.IsOpen() ? UtilEncodeFile(file, true, password, &error) : String();
    AppendText(place, path, text.Text());
    return error;
}

scOutcome GetFile(const clsItem* item, const String& password, const String& fileName) {
    return WithValue(item,
                     [&](std::wstring_view text) { return WriteDecodedFile(fileName, text, password); });
}

scOutcome GetStream(const clsItem* item, const String& password, IStream* stream) {
    return WithValue(item, [&](std::wstring_view text) -> DWORD {
        clsFile file(stream);
        return file.IsOpen() ? ReplaceByDecoded(file, text, password) : ERROR_INVALID_HANDLE;
    });
}

} // namespace vxut
