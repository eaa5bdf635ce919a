#include "trace/record_splitter.h"

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
        record[bytes] = '!'; // a taker may use the byte after it
    });
    return records;
}

std::string As(size_t count) { return std::string(count, 'a'); }

TEST(RecordSplitterTest, CutsAtLineEndsAndAtTheLimit) {
    const std::pair<std::string, Records> rows[] = {
        {"", {}},
        {"\r\n\n\r\r", {}},
        {"a\r\nb", {"a", "b"}},
        {"a\n\rb", {"a", "b"}},
        {"a\n\nb", {"a", "b"}},
        {"a\n\n\nb", {"a", "", "b"}},
        {"a\r\a\nb", {"a", "", "b"}},
        {As(510), {As(510)}},
        {As(511), {As(510), "a"}},
        {As(510) + "\nb", {As(510), "", "b"}},
        {As(1020) + "b", {As(510), As(510), "b"}},
    };
    for (const auto& [text, records] : rows) EXPECT_EQ(Split(text), records) << text;
}

} // namespace
} // namespace vxut
