#include "diagnostics/record_splitter.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vxut {
namespace {

using Records = std::vector<std::string>;

Records Split(const std::string& text) {
    Records records;
    SplitRecords(text.c_str(), [&](char* record, size_t bytes) {
        records.emplace_back(record, bytes);
        record[bytes] = '!'; // a taker may use the byte behind
    });
    return records;
}

std::string As(size_t count) { return std::string(count, 'a'); }

TEST(RecordSplitterTest, CutsAtLineEndsAndAtTheLimit) {
    const struct {
        const char* name;
        std::string text;
        Records records;
    } rows[] = {
        {"nothing", "", {}},
        {"only line ends", "\r\n\n\r\r", {}},
        {"line ends in front", "\n\r\na", {"a"}},
        {"a line end behind", "a\r\n", {"a"}},
        {"CR and LF", "a\r\nb", {"a", "b"}},
        {"LF and CR", "a\n\rb", {"a", "b"}},
        {"CR alone", "a\rb", {"a", "b"}},
        {"two equal ones are one", "a\n\nb", {"a", "b"}},
        {"three make an empty record", "a\n\n\nb", {"a", "", "b"}},
        {"a bell", "a\ab\a", {"ab"}},
        {"a bell between line ends", "a\r\a\nb", {"a", "", "b"}},
        {"bytes above 127", "\xC3\xA4\xFF", {"\xC3\xA4\xFF"}},
        {"one byte less than the limit", As(509), {As(509)}},
        {"the limit", As(510), {As(510)}},
        {"one byte more", As(511), {As(510), "a"}},
        {"a line of 600", As(600), {As(510), As(90)}},
        {"a line end at the limit", As(510) + "\nb", {As(510), "", "b"}},
        {"three records", As(1020) + "b", {As(510), As(510), "b"}},
    };
    for (const auto& row : rows) EXPECT_EQ(Split(row.text), row.records) << row.name;
}

} // namespace
} // namespace vxut
