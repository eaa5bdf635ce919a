#include "variant/variant.h"

#include "base/byte_cursor.h"
#include "variant/variant_types.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <vector>

namespace vxut {
namespace {

constexpr size_t kFirstPiece = 4096;
constexpr size_t kLargestPiece = size_t{16} * 1024 * 1024;

HRESULT WriteAll(IStream& stream, const void* bytes, size_t size) {
    ULONG written = 0;
    const HRESULT result = stream.Write(bytes, static_cast<ULONG>(size), &written);
    if (FAILED(result)) return result;
    return written == size ? S_OK : STG_E_MEDIUMFULL;
}

// Reads to the end, in pieces that grow: what a stream says of its size is not relied upon.
HRESULT ReadAll(IStream& stream, std::vector<uint8_t>& bytes) {
    for (size_t piece = kFirstPiece;; piece = std::min(2 * piece, kLargestPiece)) {
        const size_t size = bytes.size();
        bytes.resize(size + piece);
        ULONG read = 0;
        const HRESULT result = stream.Read(bytes.data() + size, static_cast<ULONG>(piece), &read);
        if (FAILED(result)) return result;
        bytes.resize(size + std::min<size_t>(read, piece));
        if (read == 0) return S_OK;
    }
}

} // namespace

HRESULT clsVariant::Save(IStream& stream) const noexcept {
    clsVariant copy;
    const clsVariant* source = this;
    if (vt & VT_BYREF) {
        const HRESULT result = copy.Assign(*this);
        if (FAILED(result)) return result;
        source = &copy;
    }
    const HRESULT result = WriteAll(stream, &source->vt, sizeof(source->vt));
    if (FAILED(result)) return result;
    if (source->vt == VT_BSTR) {
        const std::wstring_view text = TextOfVariant(*source);
        return text.empty() ? S_OK : WriteAll(stream, text.data(), text.size() * sizeof(wchar_t));
    }
    const size_t size = StoredSizeOfVariant(source->vt);
    return size == 0 ? S_OK : WriteAll(stream, ValueOfVariant(*source), size);
}

HRESULT clsVariant::Load(IStream& stream) noexcept {
    Clear();
    try {
        std::vector<uint8_t> bytes;
        const HRESULT result = ReadAll(stream, bytes);
        return FAILED(result) ? result : LoadBytes(bytes);
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
}

HRESULT clsVariant::LoadBytes(std::span<const uint8_t> bytes) noexcept {
    Clear();
    clsByteCursor cursor(bytes);
    VARTYPE type = VT_EMPTY;
    if (!cursor.ReadLittle(type) || type > kLastVariantKind) return S_OK;
    if (type == VT_BSTR) {
        const std::span<const uint8_t> text = cursor.Rest();
        return AssignText({reinterpret_cast<const wchar_t*>(text.data()), text.size() / sizeof(wchar_t)});
    }
    std::span<const uint8_t> value;
    const size_t size = StoredSizeOfVariant(type);
    if (!cursor.ReadBytes(size, value)) return S_OK;
    if (size > 0) std::memcpy(ValueOfVariant(*this), value.data(), size);
    if (size > 0 || type == VT_NULL) vt = type;
    return S_OK;
}

} // namespace vxut
