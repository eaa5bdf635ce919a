// Lines of files that are larger than the piece that is read at a time.
#include "profile/line_reader.h"

#include "profile/job.h"
#include "tests/support/fake_stream.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vxut {
namespace {

using test::FakeStream;

constexpr size_t kPieceUnits = 32 * 1024;

// What the reader makes of a text, by the rules alone.
std::vector<std::wstring> LinesOf(const std::wstring& text) {
    std::vector<std::wstring> lines;
    size_t at = 0;
    const std::wstring whole = text.substr(0, text.find(L'\0'));
    for (;;) {
        at = whole.find_first_not_of(L"\r\n", at);
        if (at == std::wstring::npos) return lines;
        at = whole.find_first_not_of(L" \t", at);
        if (at == std::wstring::npos) return lines;
        const size_t end = std::min(whole.find_first_of(L"\r\n", at), whole.size());
        lines.push_back(whole.substr(at, end - at));
        at = std::min(end + 1, whole.size());
    }
}

std::string BytesOf(const std::wstring& text, UtfType encoding) {
    if (encoding == kUtf16LittleEndian)
        return {reinterpret_cast<const char*>(text.data()), text.size() * sizeof(wchar_t)};
    return {text.begin(), text.end()};
}

void ExpectLines(const std::wstring& text, UtfType encoding) {
    const std::vector<std::wstring> expected = LinesOf(text);
    for (const size_t batch : {size_t{1}, size_t{7}}) {
        FakeStream stream(BytesOf(text, encoding));
        clsFile file(&stream);
        clsProfLineReader reader(file, encoding);
        const String first = reader.FirstLine();
        EXPECT_STREQ(first.Text(), expected.empty() ? L"" : expected.front().c_str());
        std::vector<std::wstring> lines;
        std::vector<std::wstring_view> views(batch);
        while (const size_t count = reader.NextLines(views))
            for (size_t i = 0; i < count; ++i) lines.emplace_back(views[i]);
        ASSERT_EQ(lines.size(), expected.size());
        ASSERT_TRUE(lines == expected);
        EXPECT_TRUE(reader.Finish());
        EXPECT_EQ(stream.position, stream.bytes.size());
    }
}

TEST(LineReaderTest, TheEndOfAPieceMayLieAnywhere) {
    const std::wstring tail = L"\r\n \t\r\n  a=b \n\n\tc\rlast  ";
    for (const UtfType encoding : {kUtf16LittleEndian, kUtfNone}) {
        const size_t piece = encoding == kUtfNone ? 2 * kPieceUnits : kPieceUnits;
        for (size_t before = 0; before <= tail.size(); ++before) {
            const std::wstring filler = L"first\n" + std::wstring(piece - 6 - before, L'x');
            ASSERT_NO_FATAL_FAILURE(ExpectLines(filler + tail, encoding)) << before;
            ASSERT_NO_FATAL_FAILURE(ExpectLines(filler + tail + L'\n', encoding)) << before;
        }
    }
}

TEST(LineReaderTest, LinesMayBeLongerThanAPieceAndAZeroEndsTheText) {
    std::wstring text;
    for (const size_t length : {1u, 7u, 8u, 9u, 100'000u, 20u, 32'768u, 200'000u, 5u})
        text += std::wstring(length, L'y') + L'\n';
    for (const UtfType encoding : {kUtf16LittleEndian, kUtfNone, kUtf8}) {
        ExpectLines(text, encoding);
        ExpectLines(text + std::wstring(L"end\0never\n", 10) + text, encoding);
        ExpectLines(std::wstring(100'000, L'\n') + L"a" + std::wstring(100'000, L' '), encoding);
        ExpectLines(L"", encoding);
    }
}

TEST(LineReaderTest, AProfileThatCannotBeReadToItsEndLeavesNothingInTheTree) {
    std::wstring text = L"\uFEFF[/]\n{\n";
    for (int i = 0; i < 10'000; ++i) text += L"name" + std::to_wstring(i) + L"=value\n";
    text += L"}\n" + std::wstring(100'000, L'z'); // is not part of the profile, but of the file
    int failures = 0;
    for (int call = 1;; ++call) {
        FakeStream stream(BytesOf(text, kUtf16LittleEndian));
        stream.FailCall(call, true);
        ProfJob job;
        job.OpenStream(&stream, 0);
        if (!stream.HasStruck()) {
            EXPECT_EQ(job.Root().entries(), 10'000);
            break;
        }
        EXPECT_NE(job.LastError(), PROF_OK) << call;
        EXPECT_EQ(job.Root().entries(), 0) << call;
        ++failures;
    }
    EXPECT_GT(failures, 6);
}

} // namespace
} // namespace vxut
