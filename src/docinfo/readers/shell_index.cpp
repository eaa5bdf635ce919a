// The filter that the search index of the system has for a type of file.
#include "base/late_load.h"
#include "docinfo/readers/properties.h"
#include "docinfo/readers/property_value.h"
#include "docinfo/readers/readers.h"
#include "docinfo/readers/shell_sources.h"
#include "files/path.h"

#include <ntquery.h>

#include <new>

namespace vxut {
namespace {

constexpr ULONG kInitFlags = IFILTER_INIT_APPLY_INDEX_ATTRIBUTES | IFILTER_INIT_INDEXING_ONLY |
                             IFILTER_INIT_APPLY_CRAWL_ATTRIBUTES | IFILTER_INIT_FILTER_OWNED_VALUE_OK;
static_assert(kInitFlags == 848);
constexpr int kMostChunks = 1000;
constexpr PROPID kNoId = 0xFFFFFFFF;

constexpr scNumberedProperty kProperties[] = {
    {2, &clsDocu::Title},
    {3, &clsDocu::Subject},
    {4, &clsDocu::Author},
    {5, &clsDocu::Keywords},
    {6, &clsDocu::Comments},
    {8, &clsDocu::LastAuthor},
    {12, nullptr, &clsDocu::Created},
    {13, nullptr, &clsDocu::Modified},
};

class ShellIndex : public CLateLoadBase {
public:
    ShellIndex() : CLateLoadBase(L"query") { SetFreeAtEnd(false); }

    clsLateFunction<decltype(::LoadIFilter)> LoadIFilter{*this, "LoadIFilter", 12};
};

ShellIndex& TheShellIndex() {
    static ShellIndex index;
    return index;
}

clsAutoRelease<IFilter*> FilterFor(const String& path) {
    void* filter = nullptr;
    ShellIndex& index = TheShellIndex();
    if (!index.LoadIFilter.IsAvailable() || FAILED(index.LoadIFilter(path.Text(), nullptr, &filter)))
        return {};
    return clsAutoRelease(static_cast<IFilter*>(filter));
}

// A value in task memory, as filters return it.
class ChunkValue {
public:
    ChunkValue() : own_(Allocate()), value_(own_) {}
    ~ChunkValue() {
        if (value_ != own_) Free(value_);
        Free(own_);
    }
    ChunkValue(const ChunkValue&) = delete;
    ChunkValue& operator=(const ChunkValue&) = delete;

    // Some filters fill the value they are passed, others pass back one of theirs.
    bool Read(IFilter& filter) {
        return SUCCEEDED(filter.GetValue(&value_)) && value_ && value_->vt != VT_EMPTY;
    }
    const PROPVARIANT& Get() const { return *value_; }

private:
    static PROPVARIANT* Allocate() {
        auto* const value = static_cast<PROPVARIANT*>(CoTaskMemAlloc(sizeof(PROPVARIANT)));
        if (!value) throw std::bad_alloc();
        PropVariantInit(value);
        return value;
    }
    static void Free(PROPVARIANT* value) {
        if (value) PropVariantClear(value);
        CoTaskMemFree(value);
    }

    PROPVARIANT* const own_;
    PROPVARIANT* value_;
};

scPropertyValue ValueOf(const PROPVARIANT& value) {
    scPropertyValue result = TextOrTimeOf(value);
    if (result.hasText || result.hasTime) return result;
    clsVariant other;
    result.hasText =
        SUCCEEDED(other.Assign(reinterpret_cast<const VARIANT&>(value))) && other.ToString(result.text);
    return result;
}

void Store(clsDocu& document, PROPID id, const scPropertyValue& value) {
    for (const scNumberedProperty& property : kProperties)
        if (property.id == id) StoreValue(document, property, value);
}

// Returns whether the chunk counts as one that was read.
bool ReadChunk(clsDocu& document, IFilter& filter, const STAT_CHUNK& chunk) {
    if (!(chunk.flags & CHUNK_VALUE)) return true;
    const PROPSPEC& property = chunk.attribute.psProperty;
    if (property.ulKind != PRSPEC_PROPID || property.propid == kNoId) return false;
    ChunkValue value;
    if (value.Read(filter) && IsEqualGUID(chunk.attribute.guidPropSet, kSummaryFormat))
        Store(document, property.propid, ValueOf(value.Get()));
    return true;
}

int ReadChunks(clsDocu& document, IFilter& filter) {
    int status = -1;
    STAT_CHUNK chunk{};
    for (int i = 0; i < kMostChunks && SUCCEEDED(filter.GetChunk(&chunk)); ++i)
        if (ReadChunk(document, filter, chunk)) status = 0;
    return status;
}

} // namespace

int ReadFilter(clsDocu& document, const String& path, IFilter& filter) {
    ULONG flags = 0;
    if (FAILED(filter.Init(kInitFlags, 0, nullptr, &flags))) return -1;
    const int status = flags & IFILTER_FLAGS_OLE_PROPERTIES ? ReadCompoundProperties(document, path)
                                                            : ReadChunks(document, filter);
    return status == 0 && (!IsUnset(document.Subject) || !IsUnset(document.Author)) ? 0 : -1;
}

int ReadShellIndex(clsDocu& document, const String& path) {
    if (_wcsicmp(Extension(path).Text(), L".pdf") == 0) return -1;
    const clsAutoRelease<IFilter*> filter = FilterFor(path);
    return filter ? ReadFilter(document, path, *filter.Get()) : -1;
}

} // namespace vxut
