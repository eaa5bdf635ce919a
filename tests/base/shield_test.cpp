#include "base/shield.h"

#include "base/shielded_read.h"
#include "tests/support/guarded_pages.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <thread>

namespace vxut {
namespace {

bool IsFree(clsCriticalSection& section) {
    bool isFree = false;
    std::thread([&] {
        isFree = section.TryEnter();
        if (isFree) section.Leave();
    }).join();
    return isFree;
}

void Fault() { RaiseException(static_cast<DWORD>(EXCEPTION_IN_PAGE_ERROR), 0, 0, nullptr); }
void Throw() { throw std::runtime_error("thrown"); }

TEST(ShieldTest, EndsWorkAtAFaultButPassesWhatIsThrown) {
    const test::GuardedPages pages;
    volatile int* const untouchable = static_cast<int*>(pages.Untouchable());
    EXPECT_TRUE(Shielded([] {}));
    EXPECT_FALSE(Shielded([=] { *untouchable = 1; }));
    EXPECT_FALSE(Shielded(Fault));
    EXPECT_THROW(Shielded(Throw), std::runtime_error);
}

TEST(ShieldTest, LeavesTheSectionHoweverWorkEnds) {
    clsCriticalSection section;
    const std::string result = Locked(section, [&] {
        EXPECT_FALSE(IsFree(section));
        return std::string("result");
    });
    EXPECT_EQ(result, "result");
    EXPECT_TRUE(IsFree(section));
    EXPECT_THROW(Locked(section, Throw), std::runtime_error);
    EXPECT_TRUE(IsFree(section));
    EXPECT_FALSE(Shielded([&] { Locked(section, Fault); }));
    EXPECT_TRUE(IsFree(section));
}

TEST(ShieldTest, CopiesTextsUpToWhereTheyCanBeRead) {
    const test::GuardedPages pages;
    wchar_t copy[8];
    wchar_t* const text = pages.Last<wchar_t>(5);
    std::wmemcpy(text, L"text", 5);
    EXPECT_TRUE(ReadTextShielded(copy, 8, text));
    EXPECT_STREQ(copy, L"text");
    text[4] = L'!'; // no terminator
    EXPECT_TRUE(ReadTextShielded(copy, 4, text));
    EXPECT_STREQ(copy, L"tex");
    EXPECT_FALSE(ReadTextShielded(copy, 8, text));
    EXPECT_STREQ(copy, L"");
}

} // namespace
} // namespace vxut
