// The skip-list dictionary and std::map.
#include "containers/containers.h"
#include "text/string.h"

#include <benchmark/benchmark.h>

#include <map>
#include <random>
#include <string>
#include <vector>

namespace {

using vxut::String;

struct Vxut {
    using Key = String;
    vxut::WCValSkipListDict<String, int> entries;
    void Insert(const Key& key) { entries.insert(key, 1); }
    const int* Find(const Key& key) { return entries.find(key); }
    int64_t Sum() {
        int64_t sum = 0;
        vxut::WCValSkipListDictIter<String, int> iterator(entries);
        while (++iterator) sum += iterator.value();
        return sum;
    }
};

struct StdMap {
    using Key = std::wstring;
    std::map<std::wstring, int> entries;
    void Insert(const Key& key) { entries.emplace(key, 1); }
    const int* Find(const Key& key) { return &entries.find(key)->second; }
    int64_t Sum() {
        int64_t sum = 0;
        for (const auto& entry : entries) sum += entry.second;
        return sum;
    }
};

template <class Key>
std::vector<Key> Keys(int64_t count) {
    std::mt19937 random(42);
    std::vector<Key> keys;
    for (int64_t i = 0; i < count; ++i) keys.emplace_back((L"key " + std::to_wstring(random())).c_str());
    return keys;
}

template <class Dictionary>
void Insert(benchmark::State& state) {
    const auto keys = Keys<typename Dictionary::Key>(state.range(0));
    for (auto _ : state) {
        Dictionary dictionary;
        for (const auto& key : keys) dictionary.Insert(key);
        benchmark::DoNotOptimize(dictionary);
    }
}

template <class Dictionary>
void Find(benchmark::State& state) {
    const auto keys = Keys<typename Dictionary::Key>(state.range(0));
    Dictionary dictionary;
    for (const auto& key : keys) dictionary.Insert(key);
    size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(dictionary.Find(keys[next]));
        next = (next + 7919) % keys.size();
    }
}

template <class Dictionary>
void Iterate(benchmark::State& state) {
    Dictionary dictionary;
    for (const auto& key : Keys<typename Dictionary::Key>(state.range(0))) dictionary.Insert(key);
    for (auto _ : state) benchmark::DoNotOptimize(dictionary.Sum());
}

BENCHMARK(Insert<Vxut>)->Name("DictionaryInsert/vxut")->Arg(1000)->Arg(100000)->Unit(benchmark::kMicrosecond);
BENCHMARK(Insert<StdMap>)
    ->Name("DictionaryInsert/std::map")
    ->Arg(1000)
    ->Arg(100000)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(Find<Vxut>)->Name("DictionaryFind/vxut")->Arg(1000)->Arg(100000);
BENCHMARK(Find<StdMap>)->Name("DictionaryFind/std::map")->Arg(1000)->Arg(100000);
BENCHMARK(Iterate<Vxut>)
    ->Name("DictionaryIterate/vxut")
    ->Arg(1000)
    ->Arg(100000)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(Iterate<StdMap>)
    ->Name("DictionaryIterate/std::map")
    ->Arg(1000)
    ->Arg(100000)
    ->Unit(benchmark::kMicrosecond);

} // namespace
