// Profiles when memory runs out: each call does all of its work or nothing.
#include "prof.h"
#include "profile/item_pool.h"
#include "tests/support/failing_allocations.h"

#include <gtest/gtest.h>
#include <objbase.h>

#include <cstring>
#include <string>

namespace vxut {
namespace {

using test::FailingAllocations;

int CALLBACK AddEntry(HPROF job, const wchar_t* name, const wchar_t* value, HPROFLIST sublist, void* user) {
    auto& tree = *static_cast<std::wstring*>(user);
    tree += name;
    tree += sublist ? L"{" : L"=" + std::wstring(value) + L";";
    if (sublist) {
        ProfEnumW(job, sublist, AddEntry, user);
        tree += L"}";
    }
    return 1;
}

std::wstring TreeOf(HPROF job) {
    std::wstring tree;
    ProfEnumW(job, nullptr, AddEntry, &tree);
    return tree;
}

const std::wstring kLong(300, L'v');
const std::wstring kLongPath = L"a/b/" + kLong;
const RECT kRect = {1, 2, 3, 4};

HPROF MakeJob() {
    HPROF job = ProfJobOpenW(nullptr);
    ProfSetStringW(job, nullptr, L"item", L"old");
    ProfSetStringW(job, nullptr, L"list/item", kLong.c_str());
    ProfSetStringW(job, nullptr, L"list/inner/item", L"1");
    return job;
}

// A stream of the system, whose methods take no memory of the test program.
IStream* MakeStream(const std::string& bytes) {
    const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, bytes.size());
    std::memcpy(GlobalLock(memory), bytes.data(), bytes.size());
    GlobalUnlock(memory);
    IStream* stream = nullptr;
    CreateStreamOnHGlobal(memory, TRUE, &stream);
    return stream;
}

struct Operation {
    const char* name;
    void (*run)(HPROF job);
};
const Operation kOperations[] = {
    {"append", [](HPROF job) { ProfAppendStringW(job, nullptr, L"a/b/c/item", kLong.c_str()); }},
    {"append below a list", [](HPROF job) { ProfAppendStringA(job, nullptr, "list/new/item", "value"); }},
    {"set a new item", [](HPROF job) { ProfSetRectW(job, nullptr, L"a/b/item", &kRect); }},
    {"replace a value", [](HPROF job) { ProfSetStringW(job, nullptr, L"item", kLong.c_str()); }},
    {"create a list", [](HPROF job) { ProfCreateListW(job, nullptr, kLongPath.c_str()); }},
    {"append a list", [](HPROF job) { ProfAppendListW(job, nullptr, kLongPath.c_str()); }},
    {"copy into itself", [](HPROF job) { ProfCopyList(job, nullptr, job, nullptr); }},
    {"copy into a list",
     [](HPROF job) { ProfCopyList(job, ProfGetListW(job, nullptr, L"list/inner"), job, nullptr); }},
    {"delete items", [](HPROF job) { ProfDeleteItemW(job, nullptr, L"list/inner/item"); }},
};

TEST(ProfileMemoryTest, EveryChangeIsMadeWholeOrNotAtAll) {
    for (const Operation& operation : kOperations) {
        HPROF job = MakeJob();
        const std::wstring before = TreeOf(job);
        unsigned successes = 0;
        for (; successes < 200; ++successes) {
            FailingAllocations failing(successes);
            operation.run(job);
            if (!failing.Disarm()) break;
            ASSERT_EQ(TreeOf(job), before) << operation.name << " after " << successes << " allocations";
        }
        EXPECT_NE(TreeOf(job), before) << operation.name;
        ProfJobClose(job);
    }
}

TEST(ProfileMemoryTest, ALoadWithoutMemorySaysSoAndFreesWhatItTook) {
    std::string bytes = "[/]\n";
    for (int i = 0; i < 10'000; ++i)
        bytes += "[list" + std::to_string(i) + "]\nitem=value\n" + std::string(i % 3 / 2, '}') + "\n";
    const uint64_t blocks = ItemPool().Counts().blocks;
    int32_t error = PROF_ERR_MEMORY;
    int failures = 0;
    for (unsigned successes = 12; error != PROF_OK && successes < 1'000'000; ++successes) {
        ItemPool().ShutDown(); // what an earlier load left would serve this one
        IStream* const stream = MakeStream(bytes);
        FailingAllocations failing(successes);
        HPROF job = ProfJobOpenStream(stream);
        const bool hasFailed = failing.Disarm();
        stream->Release();
        if (!job) continue;
        error = ProfGetError(job);
        EXPECT_EQ(error, hasFailed ? PROF_ERR_MEMORY : PROF_OK) << successes;
        if (hasFailed) {
            ++failures;
            EXPECT_EQ(TreeOf(job), L"") << successes;
            EXPECT_LE(ItemPool().Counts().blocks, blocks + 1) << successes;
        }
        ProfJobClose(job);
    }
    EXPECT_EQ(error, PROF_OK);
    EXPECT_GT(failures, 20);
}

} // namespace
} // namespace vxut
