#include "util/convert.h"

#include "base/debug.h"
#include "base/guard.h"
#include "base/owners.h"
#include "encoding/text_encoding.h"

#include <cstring>
#include <cwchar>
#include <utility>

using namespace vxut;

namespace {

constexpr size_t kMaxBytes = UINT32_MAX;

int64_t Fail(DWORD error) {
    SetLastError(error);
    return UTIL_CONVERT_ERR_FAILED;
}

// Calls work, which returns a result and sets the thread's last error if it fails. What it throws is a lack
// of memory.
template <class Work>
int64_t GuardedConvert(Work work) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return Guarded<int64_t>(UTIL_CONVERT_ERR_FAILED, [&] {
        const int64_t result = work();
        if (result != UTIL_CONVERT_ERR_FAILED) SetLastError(ERROR_SUCCESS);
        return result;
    });
}

int64_t PutText(const String& text, wchar_t* buffer, size_t capacity) {
    const auto length = static_cast<size_t>(text.Length());
    if (!buffer || capacity == 0) return static_cast<int64_t>(length + 1);
    const size_t copied = length < capacity ? length : capacity - 1;
    std::wmemcpy(buffer, text.Text(), copied);
    buffer[copied] = L'\0';
    return copied == length ? 0 : UTIL_CONVERT_ERR_SMALL;
}

int64_t StreamToString(IStream* stream, wchar_t* buffer, size_t capacity, bool compress) {
    clsFile file(stream);
    DWORD error = ERROR_SUCCESS;
    const String text = UtilEncodeFile(file, compress, String(), &error);
    return error == ERROR_SUCCESS ? PutText(text, buffer, capacity) : Fail(error);
}

int64_t StringToStream(const wchar_t* text, IStream* stream) {
    clsFile file(stream);
    const DWORD error = ReplaceByDecoded(file, text, String());
    return error == ERROR_SUCCESS ? 0 : Fail(error);
}

// Replaces the block that a host has, once the new one is complete.
int64_t StringToMemory(const wchar_t* text, HGLOBAL& memory) {
    clsAutoRelease<IStream*> stream;
    HRESULT result = CreateStreamOnHGlobal(nullptr, FALSE, stream.Receive());
    if (FAILED(result)) return Fail(SystemErrorOf(result));
    clsAutoGlobalFree made;
    result = GetHGlobalFromStream(stream.Get(), made.Receive());
    if (FAILED(result)) {
        DebugWrite(L"GetHGlobalFromStream() failed");
        return Fail(SystemErrorOf(result));
    }
    const int64_t code = StringToStream(text, stream.Get());
    if (code == 0) clsAutoGlobalFree(std::exchange(memory, made.Detach())).Reset();
    return code;
}

// A stream on a handle that is none would be one on memory of its own.
bool IsMemory(HGLOBAL memory) { return memory && GlobalFlags(memory) != GMEM_INVALID_HANDLE; }

} // namespace

VXUT_API int64_t UtilConvertBLOBToString(const void* bytes, size_t size, wchar_t* buffer, size_t capacity,
                                         int compress) {
    if (!bytes && size > 0) return UTIL_CONVERT_ERR_ARGUMENT;
    if (size > kMaxBytes) return Fail(ERROR_FILE_TOO_LARGE);
    return GuardedConvert([=] {
        return PutText(EncodeBytes({static_cast<const uint8_t*>(bytes), size}, compress != 0), buffer,
                       capacity);
    });
}

VXUT_API int64_t UtilConvertStreamToString(IStream* stream, wchar_t* buffer, size_t capacity, int compress) {
    if (!stream) return UTIL_CONVERT_ERR_ARGUMENT;
    return GuardedConvert([=] { return StreamToString(stream, buffer, capacity, compress != 0); });
}

VXUT_API int64_t UtilConvertHGLOBALToString(HGLOBAL memory, wchar_t* buffer, size_t capacity, int compress) {
    clsAutoRelease<IStream*> stream;
    if (!IsMemory(memory) || FAILED(CreateStreamOnHGlobal(memory, FALSE, stream.Receive())))
        return UTIL_CONVERT_ERR_ARGUMENT;
    return GuardedConvert([&] { return StreamToString(stream.Get(), buffer, capacity, compress != 0); });
}

VXUT_API int64_t UtilConvertStringToBLOB(const wchar_t* text, void* buffer, size_t capacity) {
    if (!text) return UTIL_CONVERT_ERR_ARGUMENT;
    return GuardedConvert([=]() -> int64_t {
        scByteBlock block;
        if (!DecodeText(text, String(), block)) return 0;
        if (buffer && capacity < block.size) return UTIL_CONVERT_ERR_CAPACITY;
        if (buffer && block.size > 0) std::memcpy(buffer, block.data.get(), block.size);
        return static_cast<int64_t>(block.size);
    });
}

VXUT_API int64_t UtilConvertStringToStream(const wchar_t* text, IStream* stream) {
    if (!text || !stream) return UTIL_CONVERT_ERR_ARGUMENT;
    return GuardedConvert([=] { return StringToStream(text, stream); });
}

VXUT_API int64_t UtilConvertStringToHGLOBAL(const wchar_t* text, HGLOBAL* memory) {
    if (!text || !memory) return UTIL_CONVERT_ERR_ARGUMENT;
    return GuardedConvert([=] { return StringToMemory(text, *memory); });
}
