#include "profile/embedded_variant.h"

#include "base/owners.h"
#include "encoding/text_encoding.h"
#include "profile/item_access.h"

#include <new>
#include <utility>

namespace vxut {
namespace {

constexpr std::wstring_view kPrefix = L"var://";
constexpr int64_t kMinCompressed = 101; // bytes; callers rely on small variants being readable

// A variant of somebody else's as a clsVariant, which frees nothing.
class BorrowedVariant : public clsVariant {
public:
    explicit BorrowedVariant(const VARIANT& value) noexcept { static_cast<VARIANT&>(*this) = value; }
    ~BorrowedVariant() { VariantInit(this); }
    BorrowedVariant(const BorrowedVariant&) = delete;
    BorrowedVariant& operator=(const BorrowedVariant&) = delete;
};

void ThrowIfOutOfMemory(HRESULT result) {
    if (result == E_OUTOFMEMORY) throw std::bad_alloc();
}

// Returns the system's error.
DWORD EncodeVariant(const VARIANT& value, String& text) {
    clsAutoRelease<IStream*> stream;
    if (FAILED(CreateStreamOnHGlobal(nullptr, TRUE, stream.Receive()))) throw std::bad_alloc();
    const HRESULT result = BorrowedVariant(value).Save(*stream.Get());
    ThrowIfOutOfMemory(result);
    if (FAILED(result)) return SystemErrorOf(result);
    clsFile file(stream.Get());
    DWORD error = ERROR_SUCCESS;
    text = kPrefix.data();
    text += UtilEncodeFile(file, file.GetSize() >= kMinCompressed, String(), &error);
    return error;
}

using StoreText = void (*)(const scPlace&, const wchar_t*, const wchar_t*);

DWORD StoreVariant(const scPlace& place, const wchar_t* path, const VARIANT& value, StoreText store) {
    String text;
    const DWORD error = EncodeVariant(value, text);
    if (error == ERROR_SUCCESS) store(place, path, text.Text());
    return error;
}

} // namespace

DWORD AppendVariant(const scPlace& place, const wchar_t* path, const VARIANT& value) {
    return StoreVariant(place, path, value, AppendText);
}

DWORD SetVariant(const scPlace& place, const wchar_t* path, const VARIANT& value) {
    return StoreVariant(place, path, value, SetText);
}

clsVariant VariantOfText(std::wstring_view text) {
    text = text.substr(0, text.find(L'\0'));
    clsVariant value;
    if (text.empty()) return value;
    if (!text.starts_with(kPrefix)) {
        ThrowIfOutOfMemory(value.AssignText(text));
        return value;
    }
    scByteBlock block;
    if (DecodeText(text.substr(kPrefix.size()), String(), block))
        ThrowIfOutOfMemory(value.LoadBytes(block.Bytes()));
    return value;
}

void PassVariant(clsVariant value, VARIANT& target) noexcept {
    std::swap(static_cast<VARIANT&>(value), target);
}

} // namespace vxut
