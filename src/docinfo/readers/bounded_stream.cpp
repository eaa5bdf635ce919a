#include "docinfo/readers/bounded_stream.h"

#include "base/tick_count.h"
#include "docinfo/readers/properties.h"

#include <algorithm>

namespace vxut {
namespace {

// Between two looks at the clock: a parser may ask for a whole file at once.
constexpr int64_t kMostBytesAtOnce = 65536;

} // namespace

clsBoundedStream::clsBoundedStream(clsFile& file, int64_t mostBytes, uint64_t milliseconds)
    : file_(file), mostBytes_(mostBytes), budget_(milliseconds), lastTick_(TickCount64()) {}

HRESULT clsBoundedStream::QueryInterface(REFIID id, void** object) {
    if (!object) return E_POINTER;
    if (!IsEqualIID(id, IID_ISequentialStream)) return clsIUnknownImpl::QueryInterface(id, object);
    *object = static_cast<ISequentialStream*>(this);
    AddRef();
    return S_OK;
}

bool clsBoundedStream::IsOver() {
    const uint64_t now = TickCount64();
    budget_.Add(now - lastTick_);
    lastTick_ = now;
    return budget_.IsUsedUp();
}

HRESULT clsBoundedStream::Read(void* buffer, ULONG bytes, ULONG* bytesRead) {
    const int64_t wanted = std::min({int64_t{bytes}, mostBytes_ - position_, kMostBytesAtOnce});
    const size_t done =
        IsOver() || wanted <= 0 ? 0 : ReadSome(file_, position_, buffer, static_cast<size_t>(wanted));
    position_ += static_cast<int64_t>(done);
    if (bytesRead) *bytesRead = static_cast<ULONG>(done);
    return done < bytes ? S_FALSE : S_OK;
}

HRESULT clsBoundedStream::Write(const void*, ULONG, ULONG*) { return STG_E_ACCESSDENIED; }

} // namespace vxut
