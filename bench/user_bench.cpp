// Countries, comparisons of text and downloads, as a host sees them. Peers of a country query are a search in
// the rows of a table and the system's own facts; the floors of the others are the bare system calls.
#include "support.h"
#include "tests/support/http_server.h"
#include "util.h"

#include <urlmon.h>
// After urlmon.h, which it needs:
#include <oleauto.h>

#include <cwchar>
#include <string>
#include <vector>

namespace {

void Query(const wchar_t* key) {
    VARIANT value;
    UtilLocGetCountryInfo(key, UTIL_COUNTRY_NATIVE_NAME, &value);
    VariantClear(&value);
}

// In a process that has asked for nothing before.
void QueryFirst(const std::wstring&) { Query(L"DE"); }

void FirstQuery(benchmark::State& state) { bench::MeasureFresh(state, "first-query", L""); }
BENCHMARK(FirstQuery)->Name("CountryFirstQuery/vxut")->UseManualTime()->Unit(benchmark::kMillisecond);

constexpr const wchar_t* kKeys[] = {L"DE", L"Martinique", L"0x0407", L"fr-CH", L"YT", L"Deutschland"};

void CountryVxut(benchmark::State& state) {
    Query(L"DE");
    size_t next = 0;
    for (auto _ : state) Query(kKeys[next++ % std::size(kKeys)]);
}
BENCHMARK(CountryVxut)->Name("CountryQuery/vxut");

// 500 rows in a vector, the wanted one anywhere.
void CountryLinear(benchmark::State& state) {
    BSTR list = nullptr;
    UtilLocGetCountryList(&list);
    std::vector<std::wstring> rows;
    for (const wchar_t* name = std::wcstok(list, L";"); name; name = std::wcstok(nullptr, L";"))
        rows.emplace_back(name);
    for (size_t i = 0; rows.size() < 500; ++i) rows.push_back(rows[i] + L" too");
    size_t next = 0;
    for (auto _ : state) {
        const std::wstring& key = rows[(next += 97) % rows.size()];
        for (const std::wstring& row : rows) {
            if (_wcsicmp(row.c_str(), key.c_str()) != 0) continue;
            SysFreeString(SysAllocString(row.c_str()));
            break;
        }
    }
    SysFreeString(list);
}
BENCHMARK(CountryLinear)->Name("CountryQuery/linear search");

void CountrySystem(benchmark::State& state) {
    constexpr GEOID kIds[] = {94, 244, 84, 223}; // Germany, the United States, France, Switzerland
    wchar_t name[100];
    size_t next = 0;
    for (auto _ : state) {
        GetGeoInfoW(kIds[next++ % std::size(kIds)], GEO_FRIENDLYNAME, name, 100, 0);
        SysFreeString(SysAllocString(name));
    }
}
BENCHMARK(CountrySystem)->Name("CountryQuery/GetGeoInfoW");

constexpr wchar_t kLeft[] = L"The quick brown fox jumps over the lazy dog";
constexpr wchar_t kRight[] = L"The quick brown fox jumps over the lazy cat";

void CompareVxut(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(UtilLocaleStricmp(kLeft, kRight));
}
BENCHMARK(CompareVxut)->Name("LocaleStricmp/vxut");

void CompareSystem(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(CompareStringW(LOCALE_USER_DEFAULT, NORM_IGNORECASE, kLeft, -1, kRight, -1));
}
BENCHMARK(CompareSystem)->Name("LocaleStricmp/floor:CompareStringW");

constexpr size_t kFileBytes = 50000000;

// Sends 50 MB to whoever asks.
vxut::test::HttpServer& Server() {
    static const std::string answer =
        vxut::test::HttpOk(std::string(kFileBytes, 'x'), "Cache-Control: no-store\r\n");
    static vxut::test::HttpServer server(
        [](vxut::test::HttpClient& client, const std::string&) { client.Send(answer); });
    return server;
}

int32_t STDMETHODCALLTYPE DeleteDownload(UtilDownloadCallback*, uint32_t kind, int32_t, const wchar_t* text) {
    if (kind == UTIL_DOWNLOAD_DONE) DeleteFileW(text);
    return 0;
}

void DownloadVxut(benchmark::State& state) {
    const std::wstring url = Server().Url(L"/file.bin");
    const UtilDownloadCallbackTable table = {DeleteDownload};
    UtilDownloadCallback callback = {&table};
    for (auto _ : state)
        if (UtilDownloadFile(url.c_str(), &callback) < 0) state.SkipWithError("the download failed");
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(kFileBytes));
}
BENCHMARK(DownloadVxut)->Name("Download50MB/vxut")->UseRealTime()->Unit(benchmark::kMillisecond);

void DownloadSystem(benchmark::State& state) {
    const std::wstring url = Server().Url(L"/file.bin");
    const std::wstring path = bench::TemporaryName(L"download.bin");
    for (auto _ : state)
        if (URLDownloadToFileW(nullptr, url.c_str(), path.c_str(), 0, nullptr) != S_OK)
            state.SkipWithError("the download failed");
    DeleteFileW(path.c_str());
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(kFileBytes));
}
BENCHMARK(DownloadSystem)
    ->Name("Download50MB/floor:URLDownloadToFileW")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
    bench::RunFreshTask({{"first-query", QueryFirst}});
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
