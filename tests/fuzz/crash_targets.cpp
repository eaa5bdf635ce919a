#include "crash_targets.h"

#include "host/archive_reader.h"
#include "host/dump_reader.h"
#include "trace/line_layout.h"

#include <cstring>
#include <string_view>

namespace fuzz {
namespace {

constexpr size_t kMostUnpacked = size_t{1} << 20;

std::string_view View(const uint8_t* data, size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

void RunArchive(const uint8_t* data, size_t size) {
    vlm::Archive archive;
    if (!vlm::ReadArchive(View(data, size), archive)) return;
    size_t left = 8;
    for (const vlm::ArchiveEntry& entry : archive.entries) {
        if (left-- == 0) break;
        std::string content;
        if (vlm::UnpackEntry(View(data, size), entry, kMostUnpacked, content) && content.size() != entry.size)
            __builtin_trap();
        if (content.size() > kMostUnpacked + 1) __builtin_trap();
    }
}

void RunDump(const uint8_t* data, size_t size) {
    vlm::DumpReader dump;
    if (!dump.Read(View(data, size))) return;
    CONTEXT context;
    uint64_t word;
    if (dump.Registers(context)) dump.ReadMemory(context.Rsp, &word, sizeof word);
    for (const vlm::DumpThread& thread : dump.Threads())
        if (dump.ReadMemory(thread.stackStart, &word, sizeof word) > sizeof word) __builtin_trap();
    dump.ReadMemory(UINT64_MAX, &word, sizeof word);
}

void RunLineLayout(const uint8_t* data, size_t size) {
    std::wstring format(size / sizeof(wchar_t), L'\0');
    std::memcpy(format.data(), data, format.size() * sizeof(wchar_t));
    if (vxut::LayoutOf(format.c_str()).slots > vxut::scLineLayout::kMostSlots) __builtin_trap();
}

template <class Number>
void Put(Input& bytes, Number number) {
    const auto* first = reinterpret_cast<const uint8_t*>(&number);
    bytes.insert(bytes.end(), first, first + sizeof number);
}

// One stored entry "a" with the content "x".
Input ArchiveSeed() {
    constexpr uint32_t kCrc = 0x8CDC1683;
    Input bytes;
    const auto common = [&] {
        for (const uint16_t word : {20, 0, 0, 0, 0}) Put(bytes, word);
        for (const uint32_t word : {kCrc, 1u, 1u}) Put(bytes, word);
        for (const uint16_t word : {1, 0}) Put(bytes, word);
    };
    Put(bytes, 0x04034B50);
    common();
    bytes.insert(bytes.end(), {'a', 'x'});
    const auto index = static_cast<uint32_t>(bytes.size());
    Put(bytes, 0x02014B50);
    Put(bytes, uint16_t{20});
    common();
    for (const uint16_t word : {0, 0, 0}) Put(bytes, word);
    Put(bytes, uint32_t{0});
    Put(bytes, uint32_t{0});
    bytes.push_back('a');
    const auto end = static_cast<uint32_t>(bytes.size());
    Put(bytes, 0x06054B50);
    for (const uint16_t word : {0, 0, 1, 1}) Put(bytes, word);
    Put(bytes, end - index);
    Put(bytes, index);
    Put(bytes, uint16_t{0});
    return bytes;
}

// A thread, an exception and a range of memory.
Input DumpSeed() {
    Input bytes;
    for (const uint32_t word : {0x504D444Du, 0xA793u, 3u, 32u, 0u, 0u, 0u, 0u}) Put(bytes, word);
    const uint32_t threads = 32 + 3 * 12, exception = threads + 52, memory = exception + 168,
                   data = memory + 20;
    for (const uint32_t word : {3u, 52u, threads, 6u, 168u, exception, 5u, 20u, memory}) Put(bytes, word);
    Put(bytes, uint32_t{1});
    for (const uint32_t word : {7u, 0u, 0u, 0u, 0u, 0u, 0x1000u, 0u, 16u, data, 0u, 0u}) Put(bytes, word);
    for (const uint32_t word : {7u, 0u, 0xC0000005u, 0u, 0u, 0u, 0x2000u, 0u, 2u, 0u}) Put(bytes, word);
    bytes.resize(memory);
    for (const uint32_t word : {1u, 0x1000u, 0u, 16u, data}) Put(bytes, word);
    bytes.resize(data + 16, 1);
    return bytes;
}

} // namespace

Target ArchiveTarget() {
    return {"archive",
            RunArchive,
            {ArchiveSeed()},
            {Bytes("PK\5\6"), Bytes("PK\1\2"), Bytes("PK\3\4"), Input{8, 0}}};
}

Target DumpTarget() {
    return {"dump",
            RunDump,
            {DumpSeed()},
            {Input{9, 0, 0, 0}, Input{4, 0, 0, 0}, Input{5, 0, 0, 0}, Bytes("MDMP")}};
}

Target LineLayoutTarget() {
    return {"linelayout",
            RunLineLayout,
            {Utf16(L"%d %-8s %*.*hs %I64x"), Utf16(L"%.3S %ls %c %5.2f %%")},
            {Utf16(L"%"), Utf16(L"*"), Utf16(L"I64"), Utf16(L"hs"), Utf16(L".99999")}};
}

} // namespace fuzz
