// The profile store through its exports, Boost.PropertyTree (in its INFO format) and the system's INI
// functions. A profile of N items has lists of 100 items each.
#include "prof.h"

#include <benchmark/benchmark.h>

#include <boost/property_tree/info_parser.hpp>
#include <boost/property_tree/ptree.hpp>

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

namespace {

namespace pt = boost::property_tree;

constexpr int64_t kItemsPerList = 100;

std::wstring ListName(int64_t list) { return L"List" + std::to_wstring(list); }
std::wstring ItemName(int64_t item) { return L"Item" + std::to_wstring(item); }
std::wstring ValueText(int64_t item) { return L"value number " + std::to_wstring(item); }

std::wstring TemporaryName(const wchar_t* extension, int64_t items) {
    wchar_t folder[MAX_PATH];
    GetTempPathW(MAX_PATH, folder);
    return std::wstring(folder) + L"vxut-bench-" + std::to_wstring(items) + extension;
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

// Bytes in the slabs in which the library holds texts and lists: allocations of 64 KB each outside the heaps.
int64_t SlabBytes() {
    constexpr SIZE_T kSlab = SIZE_T{64} * 1024;
    int64_t bytes = 0;
    MEMORY_BASIC_INFORMATION region = {};
    for (const char* at = nullptr; VirtualQuery(at, &region, sizeof region); at += region.RegionSize) {
        const bool isWhole = region.BaseAddress == region.AllocationBase && region.RegionSize == kSlab;
        if (isWhole && region.State == MEM_COMMIT && region.Type == MEM_PRIVATE) bytes += kSlab;
        at = static_cast<const char*>(region.BaseAddress);
    }
    return bytes;
}

int64_t LiveBytes() { return LiveHeapBytes() + SlabBytes(); }

// Both stores behind one shape: make a tree of some items, load, save, look up.
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

    static const wchar_t* Extension() { return L".prf"; }
    bool Save(const std::wstring& file) { return ProfSaveW(job_, file.c_str(), 0) == 0; }
    bool Lookup(int64_t item) {
        wchar_t value[64];
        const std::wstring path = ListName(item / kItemsPerList) + L"/" + ItemName(item % kItemsPerList);
        return ProfGetStringW(job_, nullptr, path.c_str(), value, 64, L"") > 0;
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
    bool Save(const std::wstring& file) {
        pt::write_info(NarrowName(file), tree_);
        return true;
    }
    bool Lookup(int64_t item) {
        const std::wstring path = ListName(item / kItemsPerList) + L"." + ItemName(item % kItemsPerList);
        return !tree_.get<std::wstring>(path).empty();
    }

private:
    pt::wptree tree_;
};

// The system's INI functions: look-ups only.
class PrivateProfile {
public:
    explicit PrivateProfile(int64_t items) : file_(TemporaryName(L".ini", items)) {
        std::FILE* file = _wfopen(file_.c_str(), L"wb");
        for (int64_t item = 0; item < items; ++item) {
            if (item % kItemsPerList == 0)
                std::fprintf(file, "[List%d]\r\n", static_cast<int>(item / kItemsPerList));
            std::fprintf(file, "Item%d=value number %d\r\n", static_cast<int>(item % kItemsPerList),
                         static_cast<int>(item));
        }
        std::fclose(file);
    }

    bool Lookup(int64_t item) {
        wchar_t value[64];
        return GetPrivateProfileStringW(ListName(item / kItemsPerList).c_str(),
                                        ItemName(item % kItemsPerList).c_str(), L"", value, 64,
                                        file_.c_str()) > 0;
    }

private:
    std::wstring file_;
};

template <class Store>
std::wstring SavedFile(benchmark::State& state) {
    const std::wstring name = TemporaryName(Store::Extension(), state.range(0));
    if (!Store(state.range(0)).Save(name)) state.SkipWithError("the file was not written");
    return name;
}

template <class Store>
void Load(benchmark::State& state) {
    const std::wstring name = SavedFile<Store>(state);
    {
        const int64_t before = LiveBytes();
        Store store(name);
        const auto used = static_cast<double>(LiveBytes() - before);
        state.counters["bytes_per_item"] = used / static_cast<double>(state.range(0));
        if (!store.Lookup(state.range(0) - 1)) state.SkipWithError("the file did not load");
    }
    for (auto _ : state) {
        auto store = std::make_unique<Store>(name);
        state.PauseTiming();
        store.reset();
        state.ResumeTiming();
    }
}

template <class Store>
void Save(benchmark::State& state) {
    Store store(state.range(0));
    const std::wstring name = TemporaryName(Store::Extension(), state.range(0));
    for (auto _ : state) {
        if (!store.Save(name)) state.SkipWithError("the file was not written");
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
    Store store(state.range(0));
    int64_t item = 0;
    for (auto _ : state) {
        if (!store.Lookup(item)) state.SkipWithError("the item is missing");
        item = (item + 7919) % state.range(0);
    }
}

void Sizes(benchmark::internal::Benchmark* benchmark) { benchmark->RangeMultiplier(10)->Range(1000, 100000); }

BENCHMARK(Load<Vxut>)->Name("ProfileLoad/vxut")->Apply(Sizes);
BENCHMARK(Load<PropertyTree>)->Name("ProfileLoad/Boost.PropertyTree")->Apply(Sizes);
BENCHMARK(Save<Vxut>)->Name("ProfileSave/vxut")->Apply(Sizes);
BENCHMARK(Save<PropertyTree>)->Name("ProfileSave/Boost.PropertyTree")->Apply(Sizes);
BENCHMARK(Close<Vxut>)->Name("ProfileClose/vxut")->Apply(Sizes);
BENCHMARK(Close<PropertyTree>)->Name("ProfileClose/Boost.PropertyTree")->Apply(Sizes);
BENCHMARK(Lookup<Vxut>)->Name("ProfileLookup/vxut")->Apply(Sizes);
BENCHMARK(Lookup<PropertyTree>)->Name("ProfileLookup/Boost.PropertyTree")->Apply(Sizes);
BENCHMARK(Lookup<PrivateProfile>)->Name("ProfileLookup/GetPrivateProfileStringW")->Apply(Sizes);

} // namespace
