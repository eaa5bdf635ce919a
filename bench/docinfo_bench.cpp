// Requests for documents: read anew, asked for again within the time of the cache, and looked at again after
// it. The documents are those of the folder that VXUT_BENCH_DOCUMENTS names (scripts/make-documents makes
// some), else a hundred pages. The floors open each file, and open and read 64 KiB of it.
#include "support.h"
#include "util/docinfo.h"

// After windows.h, which it needs:
#include <oleauto.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr int kPages = 100;
constexpr DWORD kHeadBytes = 64 * 1024;

// The folder, removed at the end if it was made here.
class Documents {
public:
    Documents() : given_(_wgetenv(L"VXUT_BENCH_DOCUMENTS")) {
        const fs::path folder = given_ ? fs::path(given_) : Make();
        for (const auto& entry : fs::directory_iterator(folder)) paths_.push_back(entry.path().wstring());
    }
    ~Documents() {
        std::error_code ignored;
        if (!given_) fs::remove_all(Folder(), ignored);
    }
    const std::vector<std::wstring>& Paths() const { return paths_; }

private:
    static fs::path Folder() { return bench::TemporaryName(L"documents"); }
    static fs::path Make() {
        fs::create_directories(Folder());
        for (int i = 0; i < kPages; ++i)
            std::ofstream(Folder() / (std::to_wstring(i) + L".htm"))
                << "<html><head><title>Page " << i << "</title></head>" << std::string(5000, 'x');
        return Folder();
    }

    const wchar_t* given_;
    std::vector<std::wstring> paths_;
};

const std::vector<std::wstring>& Paths() {
    static const Documents documents;
    return documents.Paths();
}

// Asks for all properties of each document.
void Ask(benchmark::State& state, HUTILDOCINFO list) {
    VARIANT values[9];
    for (VARIANT& value : values) VariantInit(&value);
    const DocInfoRequest request = {sizeof request, &values[0], &values[1], &values[2], &values[3],
                                    &values[4],     &values[5], &values[6], &values[7], &values[8]};
    for (auto _ : state)
        for (const std::wstring& path : Paths()) UtilDocInfoGet(list, path.c_str(), &request, 10);
    for (VARIANT& value : values) VariantClear(&value);
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(Paths().size()));
}

void Requests(benchmark::State& state, uint32_t cacheSeconds) {
    const HUTILDOCINFO list = UtilDocInfoOpen(cacheSeconds);
    for (const std::wstring& path : Paths()) UtilDocInfoGet(list, path.c_str(), nullptr, 10);
    Ask(state, list);
    UtilDocInfoClose(list);
}

template <class Work>
void OpenEach(benchmark::State& state, Work work) {
    for (auto _ : state) {
        for (const std::wstring& path : Paths()) {
            const HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                            nullptr, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
            work(file);
            CloseHandle(file);
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(Paths().size()));
}

void OpenOnly(benchmark::State& state) {
    OpenEach(state, [](HANDLE) {});
}

void OpenAndRead(benchmark::State& state) {
    std::vector<char> head(kHeadBytes);
    OpenEach(state, [&](HANDLE file) {
        DWORD read = 0;
        ReadFile(file, head.data(), kHeadBytes, &read, nullptr);
    });
}

BENCHMARK_CAPTURE(Requests, cold, 0)->Name("Requests/vxut");
BENCHMARK(OpenOnly)->Name("Requests/floor:open");
BENCHMARK(OpenAndRead)->Name("Requests/floor:open and read");
BENCHMARK_CAPTURE(Requests, cached, 3600)->Name("CachedRequests/vxut");

} // namespace
