#include "crash/exception_names.h"
#include "crash/exception_protection.h"
#include "crash/gpf_protection.h"
#include "tests/support/debug_listener.h"
#include "trace/line_layout.h"
#include "trace/line_ring.h"
#include "util/debug.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vxut {
namespace {

TEST(HandlerDecisionTest, FirstLettersDecide) {
    struct Case {
        const wchar_t* forceUse;
        const wchar_t* use;
        bool isEnabled;
    };
    const Case cases[] = {
        {nullptr, nullptr, true}, {nullptr, L"F", false}, {nullptr, L"0", false}, {nullptr, L"T", true},
        {L"T", L"F", true},       {L"1", L"0", true},     {L"F", L"T", false},    {L"0", nullptr, false},
        {L"X", L"F", false},      {L"X", nullptr, true},  {L"", L"F", false},     {L"f", nullptr, true},
    };
    for (const Case& each : cases)
        EXPECT_EQ(DecideHandler(each.forceUse, each.use), each.isEnabled)
            << (each.forceUse ? each.forceUse : L"-") << (each.use ? each.use : L"-");
}

TEST(ExceptionNameTest, KnowsTheTableAndNothingElse) {
    EXPECT_STREQ(ExceptionName(0xC0000005), L"Access Violation");
    EXPECT_STREQ(ExceptionName(0xC0000093), L"Float: Underflow");
    EXPECT_STREQ(ExceptionName(0x12345678), L"");
}

LONG Handle(DWORD code, CONTEXT& context) {
    EXCEPTION_RECORD record = {};
    record.ExceptionCode = code;
    EXCEPTION_POINTERS pointers = {&record, &context};
    return clsGPFProtection().HandleException(&pointers);
}

TEST(FaultDecisionTest, PassesWhatIsNotReported) {
    const DebugListener listener;
    CONTEXT context = {};
    context.Rip = 100;
    EXPECT_EQ(Handle(0xE06D7363, context), EXCEPTION_CONTINUE_SEARCH);
    EXPECT_TRUE(listener.Heard(L"Not system exception: let it pass!"));
    EXPECT_EQ(Handle(0x80000003, context), EXCEPTION_CONTINUE_EXECUTION);
    EXPECT_EQ(context.Rip, 101u);
    EXPECT_EQ(Handle(0xC00000FD, context), EXCEPTION_CONTINUE_SEARCH);
    EXPECT_FALSE(listener.Heard(L"GenerateExceptionReport"));
}

TEST(LineLayoutTest, FindsTheSlotsOfTexts) {
    const scLineLayout layout = LayoutOf(L"%d%% %-8s %*.*hs %I64x %.3S %ls %c %5.2f");
    EXPECT_TRUE(layout.isSupported);
    ASSERT_EQ(layout.slots, 10);
    using Kind = scLineLayout::Kind;
    const Kind kinds[] = {Kind::kNumber, Kind::kWideText,   Kind::kNumber,   Kind::kNumber, Kind::kNarrowText,
                          Kind::kNumber, Kind::kNarrowText, Kind::kWideText, Kind::kNumber, Kind::kNumber};
    for (int i = 0; i < layout.slots; ++i) EXPECT_EQ(layout.kinds[i], kinds[i]) << i;
    EXPECT_EQ(layout.precisions[1], scLineLayout::kNoPrecision);
    EXPECT_EQ(layout.precisions[4], scLineLayout::kPrecisionBefore);
    EXPECT_EQ(layout.precisions[6], 3);
    EXPECT_FALSE(LayoutOf(L"%n").isSupported);
    EXPECT_FALSE(LayoutOf(L"%Z").isSupported);
    EXPECT_FALSE(LayoutOf(L"%d%d%d%d%d%d%d%d%d%d%d%d%d").isSupported);
    EXPECT_TRUE(LayoutOf(L"%").isSupported);
}

std::vector<std::wstring> RingTexts() {
    std::vector<std::wstring> texts;
    ForEachRingLine(
        [](void* context, const wchar_t* text) {
            std::wstring line = text;
            static_cast<std::vector<std::wstring>*>(context)->push_back(
                line.substr(line.find_first_not_of(L' ', line.find(L"  "))));
        },
        &texts);
    return texts;
}

// The ring is the process's, so that one test has it.
TEST(TraceRingTest, KeepsWhatNobodyHears) {
    SetTraceRing(4);
    wchar_t changing[32] = L"first %s";
    std::wstring gone = L"a text that goes";
    const wchar_t unterminated[] = {L'x', L'y', L'z'};
    UtilDebug(L"lost");
    UtilDebug(changing, L"use");
    std::wcscpy(changing, L"second");
    UtilDebug(L"%s, %hs and %g", gone.c_str(), "narrow", 2.5);
    gone.assign(gone.size(), L'#');
    UtilDebug(L"%.3s|%.*s|%s", unterminated, 2, unterminated, std::wstring(300, L'l').c_str());
    UtilDebug(L"%s", reinterpret_cast<const wchar_t*>(16));
    UtilDebug(L"%d", 4);
    const auto texts = RingTexts();
    ASSERT_EQ(texts.size(), 3u); // of four, one could not be read
    EXPECT_EQ(texts[0], L"a text that goes, narrow and 2.5");
    EXPECT_EQ(texts[1], L"xyz|xy|" + std::wstring(96, L'l'));
    EXPECT_EQ(texts[2], L"4");
    {
        const clsTraceRingPause pause;
        UtilDebug(L"not kept");
    }
    UtilDebug(changing);
    EXPECT_EQ(RingTexts().back(), L"second");
    SetTraceRing(8);
    EXPECT_TRUE(RingTexts().empty());
    SetTraceRing(0);
    UtilDebug(L"off");
    EXPECT_TRUE(RingTexts().empty());
}

} // namespace
} // namespace vxut
