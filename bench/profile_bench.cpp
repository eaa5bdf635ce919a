// The profile store through its exports, beside what a program could use instead: RapidJSON on UTF-16 text,
// the fastest tree of texts at hand; Boost.PropertyTree in its INFO form; the INI calls of the system. A
// profile of N items has lists of 100 items each. Files hold the same names and values in every form.
#include "prof.h"
#include "support.h"

#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>
#include <boost/property_tree/info_parser.hpp>
#include <boost/property_tree/ptree.hpp>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace {

namespace pt = boost::property_tree;

constexpr int64_t kItemsPerList = 100;

std::wstring ListName(int64_t list) { return L"List" + std::to_wstring(list); }
std::wstring ItemName(int64_t item) { return L"Item" + std::to_wstring(item); }
std::wstring ValueText(int64_t item) { return L"value number " + std::to_wstring(item); }

std::wstring FileName(const wchar_t* extension, int64_t items) {
    return bench::TemporaryName((std::to_wstring(items) + extension).c_str());
}
std::string NarrowName(const std::wstring& name) { return std::filesystem::path(name).string(); }

// Bytes in the blocks that live on all heaps of the process.
int64_t LiveHeapBytes() {
    HANDLE heaps[32];
    const DWORD count = std::min<DWORD>(GetProcessHeaps(32, heaps), 32);
    int64_t bytes = 0;
    for (DWORD i = 0; i < count; ++i) {
        PROCESS_HEAP_ENTRY entry = {};
        HeapLock(heaps[i]);
        while (HeapWalk(heaps[i], &entry)) {
            if (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY)
                bytes += static_cast<int64_t>(entry.cbData) + entry.cbOverhead;
        }
        HeapUnlock(heaps[i]);
    }
    return bytes;
}

// Bytes in the slabs in which the library holds items, texts and lists: what is committed of its regions,
// which are reserved outside the heaps and are of a size that nothing else has.
int64_t SlabBytes() {
    constexpr ptrdiff_t kRegion = ptrdiff_t{24} * 64 * 1024;
    int64_t bytes = 0, committed = 0;
    const void* base = nullptr;
    MEMORY_BASIC_INFORMATION part = {};
    for (const char* at = nullptr; VirtualQuery(at, &part, sizeof part);
         at = static_cast<const char*>(part.BaseAddress) + part.RegionSize) {
        if (part.AllocationBase != base) {
            if (at - static_cast<const char*>(base) == kRegion) bytes += committed;
            base = part.AllocationBase;
            committed = 0;
        }
        if (part.State == MEM_COMMIT) committed += static_cast<int64_t>(part.RegionSize);
    }
    return bytes;
}

// The slabs that the library keeps when no profile is open are the first to be used again: they count for
// the profile that is loaded next, which is right for those that need more than is kept (4 MB).
int64_t LiveBytes(bool isEmpty) { return LiveHeapBytes() + (isEmpty ? 0 : SlabBytes()); }

// The names under which an item is looked up, made before anything is timed.
struct ItemKey {
    explicit ItemKey(int64_t item)
        : list(ListName(item / kItemsPerList)),
          name(ItemName(item % kItemsPerList)),
          path(list + L"/" + name) {}

    std::wstring list, name, path;
};

// Each store has one shape: make a tree of some items, load, save, look up.
class Vxut {
public:
    explicit Vxut(int64_t items) : job_(ProfJobOpenW(nullptr)) {
        for (int64_t item = 0; item < items; item += kItemsPerList) {
            HPROFLIST list = ProfAppendListW(job_, nullptr, ListName(item / kItemsPerList).c_str());
            for (int64_t i = 0; i < kItemsPerList; ++i) {
                ProfAppendStringW(job_, list, ItemName(i).c_str(), ValueText(item + i).c_str());
            }
        }
    }
    explicit Vxut(const std::wstring& file) : job_(ProfJobOpenW(file.c_str())) {}
    ~Vxut() { ProfJobClose(job_); }
    Vxut(const Vxut&) = delete;
    Vxut& operator=(const Vxut&) = delete;

    static constexpr char kTask[] = "vxut";
    static const wchar_t* Extension() { return L".prf"; }
    bool Save(const std::wstring& file) const { return ProfSaveW(job_, file.c_str(), 0) == 0; }
    bool Lookup(const ItemKey& key) const {
        wchar_t value[64];
        return ProfGetStringW(job_, nullptr, key.path.c_str(), value, 64, L"") > 0;
    }

private:
    HPROF job_;
};

class PropertyTree {
public:
    explicit PropertyTree(int64_t items) {
        for (int64_t item = 0; item < items; item += kItemsPerList) {
            pt::wptree& list = tree_.add_child(ListName(item / kItemsPerList), pt::wptree());
            for (int64_t i = 0; i < kItemsPerList; ++i) list.add(ItemName(i), ValueText(item + i));
        }
    }
    explicit PropertyTree(const std::wstring& file) { pt::read_info(NarrowName(file), tree_); }

    static const wchar_t* Extension() { return L".info"; }
    bool Save(const std::wstring& file) const {
        pt::write_info(NarrowName(file), tree_);
        return true;
    }
    bool Lookup(const ItemKey& key) const {
        return !tree_.get_child(pt::wptree::path_type(key.path, L'/')).data().empty();
    }

private:
    pt::wptree tree_;
};

// Parsed in place: names and values are views into the text of the file, which the document keeps.
class RapidJson {
public:
    using Encoding = rapidjson::UTF16LE<>;
    using Document = rapidjson::GenericDocument<Encoding>;
    using Value = rapidjson::GenericValue<Encoding>;

    explicit RapidJson(int64_t items) {
        document_.SetObject();
        auto& allocator = document_.GetAllocator();
        const auto text = [&](const std::wstring& source) {
            return Value(source.c_str(), static_cast<rapidjson::SizeType>(source.size()), allocator);
        };
        for (int64_t item = 0; item < items; item += kItemsPerList) {
            Value list(rapidjson::kObjectType);
            for (int64_t i = 0; i < kItemsPerList; ++i)
                list.AddMember(text(ItemName(i)), text(ValueText(item + i)), allocator);
            document_.AddMember(text(ListName(item / kItemsPerList)), list, allocator);
        }
    }
    explicit RapidJson(const std::wstring& file) : text_(bench::ReadBytes(file)) {
        text_.insert(text_.end(), sizeof(wchar_t), '\0');
        document_.ParseInsitu(reinterpret_cast<wchar_t*>(text_.data()));
    }

    static constexpr char kTask[] = "json";
    static const wchar_t* Extension() { return L".json"; }
    bool Save(const std::wstring& file) const {
        rapidjson::GenericStringBuffer<Encoding> buffer;
        rapidjson::Writer<decltype(buffer), Encoding, Encoding> writer(buffer);
        return document_.Accept(writer) && bench::WriteBytes(file, buffer.GetString(), buffer.GetSize());
    }
    bool Lookup(const ItemKey& key) const {
        const auto list = document_.FindMember(key.list.c_str());
        return list->value.FindMember(key.name.c_str())->value.GetStringLength() > 0;
    }

private:
    std::vector<char> text_;
    Document document_;
};

// The system's INI file: items are only ever looked up.
class PrivateProfile {
public:
    explicit PrivateProfile(int64_t items) : file_(FileName(L".ini", items)) {
        std::FILE* file = _wfopen(file_.c_str(), L"wb");
        for (int64_t item = 0; item < items; ++item) {
            if (item % kItemsPerList == 0)
                std::fprintf(file, "[List%d]\r\n", static_cast<int>(item / kItemsPerList));
            std::fprintf(file, "Item%d=value number %d\r\n", static_cast<int>(item % kItemsPerList),
                         static_cast<int>(item));
        }
        std::fclose(file);
    }

    bool Lookup(const ItemKey& key) const {
        wchar_t value[64];
        return GetPrivateProfileStringW(key.list.c_str(), key.name.c_str(), L"", value, 64, file_.c_str()) >
               0;
    }

private:
    std::wstring file_;
};

// Floors of a load: the bytes alone, and the bytes cut into lines, each a view in one array.
struct BytesOnly {
    explicit BytesOnly(const std::wstring& file) : bytes(bench::ReadBytes(file)) {}
    std::vector<char> bytes;
};
struct LineViews : BytesOnly {
    static constexpr char kTask[] = "lines";
    explicit LineViews(const std::wstring& file) : BytesOnly(file) {
        std::wstring_view text(reinterpret_cast<const wchar_t*>(bytes.data()), bytes.size() / 2);
        lines.reserve(text.size() / 16);
        while (!text.empty()) {
            const size_t end = std::min(text.find(L'\n'), text.size() - 1);
            lines.push_back(text.substr(0, end));
            text.remove_prefix(end + 1);
        }
    }
    std::vector<std::wstring_view> lines;
};

template <class Store>
std::wstring SavedFile(benchmark::State& state) {
    const std::wstring name = FileName(Store::Extension(), state.range(0));
    if (!Store(state.range(0)).Save(name)) state.SkipWithError("the file was not written");
    return name;
}

template <class Loaded>
void LoadAgain(benchmark::State& state, const std::wstring& name) {
    for (auto _ : state) {
        auto loaded = std::make_unique<Loaded>(name);
        benchmark::DoNotOptimize(loaded.get());
        state.PauseTiming();
        loaded.reset();
        state.ResumeTiming();
    }
}

template <class Store>
void Load(benchmark::State& state) {
    const std::wstring name = SavedFile<Store>(state);
    {
        const int64_t before = LiveBytes(true);
        const Store store(name);
        const auto used = static_cast<double>(LiveBytes(!std::is_same_v<Store, Vxut>) - before);
        state.counters["bytes_per_item"] = used / static_cast<double>(state.range(0));
        if (!store.Lookup(ItemKey(state.range(0) - 1))) state.SkipWithError("the file did not load");
    }
    LoadAgain<Store>(state, name);
}

template <class Floor>
void LoadFloor(benchmark::State& state) {
    LoadAgain<Floor>(state, SavedFile<Vxut>(state));
}

// In a process that has allocated nothing before: each page is touched for the first time.
template <class Store, class Loaded = Store>
void FreshLoad(benchmark::State& state) {
    bench::MeasureFresh(state, Loaded::kTask, SavedFile<Store>(state));
}
template <class Loaded>
void LoadOnce(const std::wstring& name) {
    new Loaded(name); // the process ends without releasing it
}

template <class Store>
void Save(benchmark::State& state) {
    const Store store(state.range(0));
    const std::wstring name = FileName(Store::Extension(), state.range(0));
    for (auto _ : state) {
        if (!store.Save(name)) state.SkipWithError("the file was not written");
    }
}

// One write of the library's own image into a new file; beside it what makes that safe: a second file,
// written out to the disk and put in the place of the first.
void SaveFloor(benchmark::State& state) {
    const std::vector<char> image = bench::ReadBytes(SavedFile<Vxut>(state));
    const std::wstring name = FileName(L".image", state.range(0));
    for (auto _ : state) {
        if (!bench::WriteBytes(name, image.data(), image.size()))
            state.SkipWithError("the file was not written");
    }
}
void SafeSaveFloor(benchmark::State& state) {
    const std::vector<char> image = bench::ReadBytes(SavedFile<Vxut>(state));
    const std::wstring name = FileName(L".image", state.range(0));
    for (auto _ : state) {
        if (!bench::WriteBytesSafely(name, image.data(), image.size()))
            state.SkipWithError("the file was not written");
    }
}

template <class Store>
void Close(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        auto store = std::make_unique<Store>(state.range(0));
        state.ResumeTiming();
        store.reset();
    }
}

// Reads items from all parts of the profile, each by its full path.
template <class Store>
void Lookup(benchmark::State& state) {
    const Store store(state.range(0));
    std::vector<ItemKey> keys;
    for (int64_t i = 0; i < 1009; ++i) keys.emplace_back(i * 7919 % state.range(0));
    size_t next = 0;
    for (auto _ : state) {
        if (!store.Lookup(keys[next])) state.SkipWithError("the item is missing");
        if (++next == keys.size()) next = 0;
    }
}

// New names into one list, one call each.
void SetNewNames(benchmark::State& state) {
    std::vector<std::wstring> names;
    for (int64_t i = 0; i < state.range(0); ++i) names.push_back(L"List/" + ItemName(i));
    for (auto _ : state) {
        const HPROF job = ProfJobOpenW(nullptr);
        for (const std::wstring& name : names) ProfSetStringW(job, nullptr, name.c_str(), L"value");
        state.PauseTiming();
        ProfJobClose(job);
        state.ResumeTiming();
    }
    state.counters["ns_per_item"] =
        benchmark::Counter(static_cast<double>(state.range(0)) * 1e-9,
                           benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

// Reads items of one long list.
void LookupInList(benchmark::State& state) {
    const HPROF job = ProfJobOpenW(nullptr);
    const HPROFLIST list = ProfAppendListW(job, nullptr, L"List");
    for (int64_t i = 0; i < state.range(0); ++i)
        ProfAppendStringW(job, list, ItemName(i).c_str(), ValueText(i).c_str());
    std::vector<std::wstring> names;
    for (int64_t i = 0; i < 1009; ++i) names.push_back(ItemName(i * 7919 % state.range(0)));
    wchar_t value[64];
    // The first look-ups make the index.
    for (const std::wstring& name : names) ProfGetStringW(job, list, name.c_str(), value, 64, L"");
    size_t next = 0;
    for (auto _ : state) {
        if (ProfGetStringW(job, list, names[next].c_str(), value, 64, L"") <= 0)
            state.SkipWithError("the item is missing");
        if (++next == names.size()) next = 0;
    }
    ProfJobClose(job);
}

void Sizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->RangeMultiplier(10)->Range(1000, 1000000)->UseRealTime();
}
void SmallSizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->RangeMultiplier(10)->Range(1000, 100000)->UseRealTime();
}
void FreshSizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->RangeMultiplier(10)->Range(1000, 1000000)->UseManualTime()->Iterations(3);
}

BENCHMARK(Load<Vxut>)->Name("ProfileLoad/vxut")->Apply(Sizes);
BENCHMARK(Load<RapidJson>)->Name("ProfileLoad/RapidJSON in situ")->Apply(Sizes);
BENCHMARK(Load<PropertyTree>)->Name("ProfileLoad/Boost.PropertyTree")->Apply(SmallSizes);
BENCHMARK(LoadFloor<BytesOnly>)->Name("ProfileLoad/floor:ReadFile")->Apply(Sizes);
BENCHMARK(LoadFloor<LineViews>)->Name("ProfileLoad/floor:line views")->Apply(Sizes);

BENCHMARK(FreshLoad<Vxut>)->Name("ProfileFreshLoad/vxut")->Apply(FreshSizes);
BENCHMARK(FreshLoad<RapidJson>)->Name("ProfileFreshLoad/RapidJSON in situ")->Apply(FreshSizes);
BENCHMARK(FreshLoad<Vxut, LineViews>)->Name("ProfileFreshLoad/floor:line views")->Apply(FreshSizes);

BENCHMARK(Save<Vxut>)->Name("ProfileSave/vxut")->Apply(Sizes);
BENCHMARK(Save<RapidJson>)->Name("ProfileSave/RapidJSON")->Apply(Sizes);
BENCHMARK(Save<PropertyTree>)->Name("ProfileSave/Boost.PropertyTree")->Apply(SmallSizes);
BENCHMARK(SaveFloor)->Name("ProfileSave/floor:WriteFile")->Apply(Sizes);
BENCHMARK(SafeSaveFloor)->Name("ProfileSave/floor:WriteFile, flush, rename")->Apply(Sizes);

BENCHMARK(Close<Vxut>)->Name("ProfileClose/vxut")->Apply(Sizes);
BENCHMARK(Close<RapidJson>)->Name("ProfileClose/RapidJSON")->Apply(Sizes);
BENCHMARK(Close<PropertyTree>)->Name("ProfileClose/Boost.PropertyTree")->Apply(SmallSizes);

BENCHMARK(Lookup<Vxut>)->Name("ProfileLookup/vxut")->Apply(Sizes);
BENCHMARK(Lookup<RapidJson>)->Name("ProfileLookup/RapidJSON")->Apply(Sizes);
BENCHMARK(Lookup<PropertyTree>)->Name("ProfileLookup/Boost.PropertyTree")->Apply(Sizes);
BENCHMARK(Lookup<PrivateProfile>)->Name("ProfileLookup/GetPrivateProfileStringW")->Apply(SmallSizes);

BENCHMARK(LookupInList)->Name("ProfileLookupInList/vxut")->Apply(Sizes);

BENCHMARK(SetNewNames)->Name("ProfileSetNewName/vxut")->Apply(Sizes);

} // namespace

int main(int argc, char** argv) {
    bench::RunFreshTask({{Vxut::kTask, LoadOnce<Vxut>},
                         {RapidJson::kTask, LoadOnce<RapidJson>},
                         {LineViews::kTask, LoadOnce<LineViews>}});
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
