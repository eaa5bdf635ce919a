// The property store that the shell has for a file.
#include "base/late_load.h"
#include "docinfo/readers/properties.h"
#include "docinfo/readers/property_value.h"
#include "docinfo/readers/readers.h"
#include "docinfo/readers/shell_sources.h"

#include <shobjidl.h>

#include <atomic>
#include <memory>

namespace vxut {
namespace {

// In the order in which they are read. The others are not asked for.
constexpr scNumberedProperty kProperties[] = {
    {2, &clsDocu::Title},
    {4, &clsDocu::Author},
    {5, &clsDocu::Keywords},
    {3, &clsDocu::Subject},
    {12, nullptr, &clsDocu::Created},
    {13, nullptr, &clsDocu::Modified},
};

class Shell : public CLateLoadBase {
public:
    Shell() : CLateLoadBase(L"shell32") { SetFreeAtEnd(false); }

    clsLateFunction<decltype(::SHGetPropertyStoreFromParsingName)> SHGetPropertyStoreFromParsingName{
        *this, "SHGetPropertyStoreFromParsingName", 20};
    clsLateFunction<decltype(::SHCreateItemFromParsingName)> SHCreateItemFromParsingName{
        *this, "SHCreateItemFromParsingName", 16};
};

Shell& TheShell() {
    static Shell shell;
    return shell;
}

using Store = clsAutoRelease<IPropertyStore*>;

// A way to the store of a file. A system that does not have it says so for every file, and is asked once.
class Source {
public:
    using Open = HRESULT (*)(const String& path, void** store);
    constexpr explicit Source(Open open) noexcept : open_(open) {}

    Store StoreOf(const String& path) {
        if (isMissing_.load(std::memory_order_relaxed)) return {};
        void* store = nullptr;
        const HRESULT result = open_(path, &store);
        if (result == E_NOTIMPL) isMissing_ = true;
        return SUCCEEDED(result) ? Store(static_cast<IPropertyStore*>(store)) : Store();
    }

private:
    Open open_;
    std::atomic<bool> isMissing_{false};
};

HRESULT OpenByPath(const String& path, void** store) {
    Shell& shell = TheShell();
    if (!shell.SHGetPropertyStoreFromParsingName.IsAvailable()) return E_NOTIMPL;
    return shell.SHGetPropertyStoreFromParsingName(path.Text(), nullptr, GPS_BESTEFFORT,
                                                   __uuidof(IPropertyStore), store);
}

HRESULT OpenByItem(const String& path, void** store) {
    Shell& shell = TheShell();
    if (!shell.SHCreateItemFromParsingName.IsAvailable()) return E_NOTIMPL;
    void* object = nullptr;
    const HRESULT result =
        shell.SHCreateItemFromParsingName(path.Text(), nullptr, __uuidof(IShellItem2), &object);
    if (FAILED(result)) return result;
    const clsAutoRelease<IShellItem2*> item(static_cast<IShellItem2*>(object));
    return item->GetPropertyStore(GPS_BESTEFFORT, __uuidof(IPropertyStore), store);
}

constinit Source sources[] = {Source(OpenByPath), Source(OpenByItem)};

SYSTEMTIME TimeOf(const VARIANT& value) {
    SYSTEMTIME time{};
    FILETIME fileTime{};
    const bool isTime = value.vt == VT_DATE && VariantTimeToSystemTime(value.date, &time) &&
                        SystemTimeToFileTime(&time, &fileTime);
    return isTime ? SystemTimeOf(fileTime) : EmptyTime();
}

// Whether the reader takes a value of the type. A store that returns wide text is refused at its first one,
// and the readers of formats serve the file: callers rely on it.
bool IsTaken(const scNumberedProperty& property, VARTYPE type) {
    return type == VT_EMPTY || type == (property.text ? VT_LPSTR : VT_FILETIME);
}

} // namespace

StoreResult ReadStore(clsDocu& document, IPropertyStore& store, clsPropSys& conversion) {
    int count = 0;
    for (const scNumberedProperty& property : kProperties) {
        clsPropVariant value;
        const PROPERTYKEY key{kSummaryFormat, property.id};
        if (FAILED(store.GetValue(key, &value))) continue;
        if (!IsTaken(property, value.vt)) return StoreResult::kRefused;
        clsVariant converted;
        const HRESULT result = conversion.PropVariantToVariant(&value, &converted);
        if (property.time) {
            document.*property.time = TimeOf(converted);
            continue;
        }
        if (SUCCEEDED(result)) document.*property.text = converted;
        if (!IsUnset(document.*property.text)) ++count;
    }
    return count > 0 ? StoreResult::kFound : StoreResult::kNothing;
}

int ReadPropertyStore(clsDocu& document, const String& path) {
    std::unique_ptr<clsPropSys> conversion; // loaded only where there is a store, and freed after it
    for (Source& source : sources) {
        const Store store = source.StoreOf(path);
        if (!store) continue;
        if (!conversion) conversion = std::make_unique<clsPropSys>();
        if (!conversion->PropVariantToVariant.IsAvailable()) return -1;
        const StoreResult result = ReadStore(document, *store.Get(), *conversion);
        if (result != StoreResult::kNothing) return result == StoreResult::kFound ? 0 : -1;
    }
    return -1;
}

} // namespace vxut
