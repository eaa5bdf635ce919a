// The skip-list dictionary beside std::map, with the same keys and with std::wstring.
#include "containers/containers.h"
#include "support.h"
#include "text/string.h"

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

template <class Text>
struct StdMap {
    using Key = Text;
    std::map<Text, int> entries;
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

void Sizes(benchmark::internal::Benchmark* benchmark) { benchmark->Arg(1000)->Arg(100000)->Arg(1000000); }

BENCHMARK(Insert<Vxut>)->Name("DictionaryInsert/vxut")->Apply(Sizes);
BENCHMARK(Insert<StdMap<String>>)->Name("DictionaryInsert/std::map of String")->Apply(Sizes);
BENCHMARK(Insert<StdMap<std::wstring>>)->Name("DictionaryInsert/std::map of std::wstring")->Apply(Sizes);
BENCHMARK(Find<Vxut>)->Name("DictionaryFind/vxut")->Apply(Sizes);
BENCHMARK(Find<StdMap<String>>)->Name("DictionaryFind/std::map of String")->Apply(Sizes);
BENCHMARK(Find<StdMap<std::wstring>>)->Name("DictionaryFind/std::map of std::wstring")->Apply(Sizes);
BENCHMARK(Iterate<Vxut>)->Name("DictionaryIterate/vxut")->Apply(Sizes);
BENCHMARK(Iterate<StdMap<String>>)->Name("DictionaryIterate/std::map of String")->Apply(Sizes);
BENCHMARK(Iterate<StdMap<std::wstring>>)->Name("DictionaryIterate/std::map of std::wstring")->Apply(Sizes);

} // namespace
