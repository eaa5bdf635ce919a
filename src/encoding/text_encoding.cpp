#include "encoding/text_encoding.h"

#include "base/debug.h"
#include "encoding/base64.h"
#include "encoding/blowfish.h"
#include "files/overwrite.h"

namespace vxut {
namespace {

constexpr std::wstring_view kPackedPrefix = L"@2@";
constexpr std::wstring_view kOldPackedPrefix = L"@1@";
constexpr size_t kMinEncrypted = clsBlowfish::kBlock;
constexpr size_t kMinDecrypted = 12;
constexpr int64_t kMaxBytes = UINT32_MAX; // the size field of packed blocks has 32 bits

enum class Form { kPlain, kPacked, kOldPacked };

String TextOf(std::span<const uint8_t> bytes, std::wstring_view prefix) {
    const size_t length = prefix.size() + Base64Length(bytes.size());
    String text;
    wchar_t* const units = text.GetBuffer(static_cast<int64_t>(length));
    prefix.copy(units, prefix.size());
    EncodeBase64(bytes, units + prefix.size());
    text.SetLength(static_cast<int64_t>(length));
    return text;
}

String EncodeBlock(scByteBlock block, bool compress, const String& password) {
    if (compress) block = PackBlock(block.Bytes());
    if (!password.IsEmpty() && block.size >= kMinEncrypted) clsBlowfish(password).Encode(block.Bytes());
    return TextOf(block.Bytes(), compress ? kPackedPrefix : std::wstring_view());
}

// Removes the prefix.
Form FormOf(std::wstring_view& text) {
    const Form form = text.starts_with(kPackedPrefix)      ? Form::kPacked
                      : text.starts_with(kOldPackedPrefix) ? Form::kOldPacked
                                                           : Form::kPlain;
    if (form != Form::kPlain) text.remove_prefix(kPackedPrefix.size());
    return form;
}

DWORD ReadWhole(clsFile& file, scByteBlock& block) {
    file.ForgetFailure();
    const int64_t size = file.GetSize();
    if (size > kMaxBytes) return ERROR_FILE_TOO_LARGE;
    if (size > 0) {
        block = scByteBlock(static_cast<size_t>(size));
        file.SetPosition(0);
        const bool isRead = file.Failure() == ERROR_SUCCESS && file.Read(block.data.get(), size) == size;
        if (!isRead && file.Failure() == ERROR_SUCCESS) return ERROR_HANDLE_EOF;
    }
    return file.Failure();
}

} // namespace

String EncodeBytes(std::span<const uint8_t> bytes, bool compress) {
    if (bytes.empty()) return {};
    return compress ? TextOf(PackBlock(bytes).Bytes(), kPackedPrefix) : TextOf(bytes, {});
}

bool DecodeText(std::wstring_view text, const String& password, scByteBlock& block) {
    text = text.substr(0, text.find(L'\0'));
    const Form form = FormOf(text);
    block = scByteBlock(Base64Capacity(text.size()));
    const auto count = form == Form::kOldPacked ? Base64Count::kWholeGroups : Base64Count::kByPadding;
    // The capacity is enough for any text; this guards the buffer should that ever be wrong.
    if (!DecodeBase64(text, block.Bytes(), count, block.size)) {
        DebugWrite(L"ERR: Base64 string has bad format!");
        return false;
    }
    if (!password.IsEmpty() && block.size >= kMinDecrypted) clsBlowfish(password).Decode(block.Bytes());
    if (form == Form::kOldPacked) block = UnpackOldBlock(block.Bytes());
    if (form == Form::kPacked && IsPackedBlock(block.Bytes())) block = UnpackBlock(block.Bytes());
    return true;
}

String UtilEncodeFile(clsFile& file, bool compress, const String& password, DWORD* error) {
    scByteBlock block;
    const DWORD failure = ReadWhole(file, block);
    if (error) *error = failure;
    if (failure != ERROR_SUCCESS || block.size == 0) return {};
    return EncodeBlock(std::move(block), compress, password);
}

DWORD ReplaceByDecoded(clsFile& file, std::wstring_view text, const String& password) {
    scByteBlock block;
    if (!DecodeText(text, password, block)) return ERROR_SUCCESS;
    const DWORD error = OverwriteContent(file, block.data.get(), static_cast<int64_t>(block.size));
    if (error != ERROR_SUCCESS) return error;
    file.ForgetFailure(); // a stream may have refused to be sized and ended in the right place all the same
    file.SetPosition(0);
    return file.Failure();
}

bool UtilDecodeFile(clsFile& file, const String& text, const String& password, DWORD* error) {
    const std::wstring_view units(text.Text(), static_cast<size_t>(text.Length()));
    const DWORD failure = text.IsEmpty() ? ERROR_SUCCESS : ReplaceByDecoded(file, units, password);
    if (error) *error = failure;
    return !text.IsEmpty();
}

} // namespace vxut
