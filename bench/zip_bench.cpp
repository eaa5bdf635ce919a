// A ZIP archive of one file of 20 MB of mixed content, and one of 200 small files. The floor compresses the
// same bytes with zlib at the same settings, from memory to memory.
#include "support.h"
#include "util/zip.h"

#include <zlib.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr size_t kLargeBytes = 20000000;
constexpr size_t kSmallBytes = 20000;
constexpr int kSmallFiles = 200;

// Words, numbers and noise in turn, as a folder of programs and documents has them.
std::string MixedContent(size_t bytes, unsigned seed) {
    std::mt19937 random(seed);
    std::string content;
    while (content.size() < bytes) {
        for (int i = 0; i < 200; ++i) content += "word" + std::to_string(random() % 5000) + ' ';
        for (int i = 0; i < 300; ++i) content += static_cast<char>(random());
    }
    content.resize(bytes);
    return content;
}

// The files that are packed, in a folder that is removed at the end.
class Sources {
public:
    Sources() : folder_(bench::TemporaryName(L"zip")) {
        fs::remove_all(folder_);
        fs::create_directories(folder_ / L"small");
        std::ofstream(Large(), std::ios::binary) << MixedContent(kLargeBytes, 1);
        for (int i = 0; i < kSmallFiles; ++i)
            std::ofstream(Small() / std::to_wstring(i), std::ios::binary)
                << MixedContent(kSmallBytes, static_cast<unsigned>(i));
    }
    ~Sources() {
        std::error_code ignored;
        fs::remove_all(folder_, ignored);
    }
    fs::path Large() const { return folder_ / L"large"; }
    fs::path Small() const { return folder_ / L"small"; }
    fs::path Archive() const { return folder_ / L"a.zip"; }

private:
    fs::path folder_;
};

const Sources& TheSources() {
    static const Sources sources;
    return sources;
}

template <class Add>
void Create(benchmark::State& state, size_t bytes, Add add) {
    const fs::path archive = TheSources().Archive();
    for (auto _ : state) {
        const HUTILZIP zip = UtilZIPCreate(archive.c_str(), nullptr);
        add(zip);
        if (UtilZIPClose(zip) != UTIL_ZIP_OK) state.SkipWithError("no archive");
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(bytes));
}

void CreateLarge(benchmark::State& state) {
    Create(state, kLargeBytes,
           [](HUTILZIP zip) { UtilZIPAppend(zip, TheSources().Large().c_str(), nullptr, L"large"); });
}
void CreateSmall(benchmark::State& state) {
    Create(state, kSmallFiles * kSmallBytes,
           [](HUTILZIP zip) { UtilZIPAppendList(zip, TheSources().Small().c_str(), nullptr, 0); });
}

void Deflate(benchmark::State& state, size_t bytes, int files) {
    const std::string content = MixedContent(bytes, 1);
    std::vector<Bytef> packed(compressBound(static_cast<uLong>(bytes)));
    for (auto _ : state) {
        for (int i = 0; i < files; ++i) {
            z_stream stream{};
            deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, -15, 8, Z_DEFAULT_STRATEGY);
            stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(content.data()));
            stream.avail_in = static_cast<uInt>(bytes);
            stream.next_out = packed.data();
            stream.avail_out = static_cast<uInt>(packed.size());
            benchmark::DoNotOptimize(deflate(&stream, Z_FINISH));
            benchmark::DoNotOptimize(
                crc32(0, reinterpret_cast<const Bytef*>(content.data()), static_cast<uInt>(bytes)));
            deflateEnd(&stream);
        }
    }
    state.SetBytesProcessed(state.iterations() * files * static_cast<int64_t>(bytes));
}
void DeflateLarge(benchmark::State& state) { Deflate(state, kLargeBytes, 1); }
void DeflateSmall(benchmark::State& state) { Deflate(state, kSmallBytes, kSmallFiles); }

BENCHMARK(CreateLarge)->Name("ZipOneFile20MB/vxut")->Unit(benchmark::kMillisecond);
BENCHMARK(DeflateLarge)->Name("ZipOneFile20MB/floor:zlib")->Unit(benchmark::kMillisecond);
BENCHMARK(CreateSmall)->Name("Zip200Files20KB/vxut")->Unit(benchmark::kMillisecond);
BENCHMARK(DeflateSmall)->Name("Zip200Files20KB/floor:zlib")->Unit(benchmark::kMillisecond);

} // namespace
