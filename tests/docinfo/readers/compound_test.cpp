#include "docinfo/readers/compound_file.h"
#include "docinfo/readers/readers.h"
#include "files/temp_file.h"
#include "tests/support/document_text.h"
#include "tests/support/storage_builder.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

#include <cstring>

namespace vxut::test {
namespace {

constexpr uint64_t kNow = 134'071'602'000'000'000; // 2025-11-09 11:10:00

std::string Wide(const std::u16string& text) {
    return {reinterpret_cast<const char*>(text.data()), text.size() * 2};
}

class CompoundTest : public testing::Test {
protected:
    String Put(const std::vector<StorageStream>& streams) {
        const String path = folder_.At(L"a.doc");
        MakeStorage(path.Text(), streams);
        return path;
    }
    static std::wstring Read(int (*read)(clsDocu&, const String&), const String& path) {
        clsDocu document;
        const int result = read(document, path);
        return (result == 0 ? L"0 " : L"- ") + Describe(document);
    }
    std::wstring ReadMessage(const std::vector<StorageStream>& streams) {
        return Read(ReadMessageStorage, Put(streams));
    }
    std::wstring ReadSummary(const std::vector<std::pair<uint32_t, std::string>>& properties) {
        return Read(ReadCompoundProperties, Put({{kSummaryName, SummarySet(properties)}}));
    }

    FreshFolder folder_;
};

TEST_F(CompoundTest, ReadsTheSummary) {
    EXPECT_EQ(ReadSummary({{2, NarrowValue("T\xE4")},
                           {3, Little32(VT_I4) + Little32(0xFFFFFFFE)},
                           {4, Little32(VT_R8) + Number(0x3FF8000000000000, 8)},
                           {5, Little32(VT_BOOL) + Little32(0xFFFF)},
                           {6, Little32(VT_UI4) + Little32(0xFFFFFFFE)},
                           {8, Little32(VT_LPWSTR) + Little32(2) + Wide(u"L") + Little16(0)},
                           {10, TimeValue(0)},
                           {12, TimeValue(kNow)},
                           {13, TimeValue(kNow + 10'000'000)}}),
              L"0 Title=T\xE4|Subject=-2|Author=1.5|LastAuthor=L|Keywords=true|Comments=4294967294|"
              L"Created=2025-11-09 11:10:00|Modified=2025-11-09 11:10:01|");
    EXPECT_EQ(ReadSummary({{2, TimeValue(kNow)}, {12, NarrowValue("no time")}}), L"0 ");
    EXPECT_EQ(Read(ReadCompoundProperties, Put({{L"WordDocument", "x"}})), L"- ");
    EXPECT_EQ(Read(ReadCompoundProperties, folder_.Put(L"b", "no storage")), L"- ");
    EXPECT_EQ(Read(ReadCompoundProperties, folder_.At(L"absent")), L"- ");
}

TEST_F(CompoundTest, ReadsMessages) {
    // The stride of 24 meets the first and the fourth record.
    const auto record = [](uint32_t tag, uint64_t time) {
        return Little32(tag) + Little32(6) + Number(time, 8);
    };
    const std::string none = record(0, 0) + record(0, 0);
    const std::string times =
        std::string(32, '\0') + record(0x00390040, kNow) + none + record(0x0E060040, kNow + 600'000'000);
    EXPECT_EQ(ReadMessage({{L"__substg1.0_0037001E", "Narrow\xE4"},
                           {L"__substg1.0_0042001F", Wide(u"Name\u4E00")},
                           {L"__substg1.0_0065001F", Wide(u"address")},
                           {L"__recip_version1.0_#00000000/__substg1.0_3001001F", Wide(u"a")},
                           {L"__recip_version1.0_#00000001/__substg1.0_3003001E", "b"},
                           {L"__recip_version1.0_#00000002/__substg1.0_3001001F", Wide(u"c\0d")},
                           {L"__recip_version1.0_#00000004/__substg1.0_3001001F", Wide(u"no")},
                           {L"__properties_version1.0", times + std::string(8, '\0')}}),
              L"0 Title=Narrow\xE4|Author=Name\x4E00|LastAuthor=a; b; c|"
              L"Created=2025-11-09 11:10:00|Modified=2025-11-09 11:11:00|");
    EXPECT_EQ(ReadMessage({{L"__substg1.0_0037001F", Wide(u"Wide")}, {L"__substg1.0_0C1F001E", "sender"}}),
              L"0 Title=Wide|Author=sender|");
    // Without a time of sending that of delivery is the creation.
    EXPECT_EQ(ReadMessage({{L"__properties_version1.0",
                            std::string(32, '\0') + record(0x0E060040, kNow) + std::string(8, '\0')}}),
              L"0 Title=|Author=|Created=2025-11-09 11:10:00|");
    EXPECT_EQ(ReadMessage({{L"__properties_version1.0", times.substr(0, 55)}}), L"0 Title=|Author=|");
}

TEST_F(CompoundTest, CopiesAFileThatIsInUse) {
    const String path = Put({{kSummaryName, SummarySet({{2, NarrowValue("T")}})}});
    const clsAutoCloseFile writer(CreateFileW(path.Text(), GENERIC_READ | GENERIC_WRITE,
                                              FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0,
                                              nullptr));
    EXPECT_EQ(Read(ReadCompoundProperties, path), L"0 Title=T|");
    for (const auto& entry : std::filesystem::directory_iterator(TempFolder(kSharedTempFolder).Text()))
        EXPECT_EQ(entry.path().filename().wstring().find(L"_21_doc"), std::wstring::npos);
}

// Changes files of the system's making in the places where rings and lies can be.
class DamagedCompoundTest : public CompoundTest {
protected:
    static constexpr size_t kSector = 512;

    DamagedCompoundTest() {
        Put({{kSummaryName, SummarySet({{2, NarrowValue("T")}, {6, NarrowValue(std::string(5000, 'c'))}})},
             {L"__small", std::string(200, 's')},
             {L"Body", std::string(20000, 'b')}});
        bytes_ = folder_.Get(L"a.doc");
    }
    uint32_t Number32(size_t offset) const {
        uint32_t number;
        std::memcpy(&number, bytes_.data() + offset, sizeof number);
        return number;
    }
    static size_t OffsetOf(uint32_t sector) { return (sector + 1) * kSector; }
    // Where the allocation table has the successor of a sector.
    size_t LinkOf(uint32_t sector) const { return OffsetOf(Number32(76)) + sector * 4; }
    // Where the directory has an entry.
    size_t EntryOf(const std::wstring& name) const {
        std::string bytes(reinterpret_cast<const char*>(name.data()), name.size() * 2);
        return bytes_.find(bytes);
    }
    std::wstring ReadWith(size_t offset, const std::string& change) {
        std::string changed = bytes_;
        changed.replace(offset, change.size(), change);
        const String path = folder_.Put(L"b.doc", changed);
        clsDocFile file(path);
        const bool isSound = IsCompoundFileSound(file);
        file.Close();
        clsDocu document;
        const int result = ReadCompoundProperties(document, path);
        EXPECT_EQ(isSound, result != STG_E_DOCFILECORRUPT) << offset;
        return (result == 0 ? L"0 " : L"- ") + TextOrUnset(document.Title);
    }

    std::string bytes_;
};

TEST_F(DamagedCompoundTest, RefusesWhatCannotBeTrue) {
    const size_t summary = EntryOf(kSummaryName);
    const size_t small = EntryOf(L"__small");
    const uint32_t directory = Number32(48);
    const uint32_t smallTable = Number32(60);
    std::string unnamed = bytes_.substr(summary + 64, 56);
    unnamed.replace(0, 2, Little16(0)).replace(52, 4, Little32(directory));
    const struct {
        const char* what;
        size_t offset;
        std::string change;
    } cases[] = {
        {"the size of a sector", 30, Little16(31)},
        {"a number of table sectors", 44, Little32(0x7FFFFFFF)},
        {"a table sector outside", 76, Little32(0x10000)},
        {"a table sector that is the directory", 76, Little32(directory)},
        {"a list of table sectors that is a ring", 68, Little32(0) + Little32(0x1000000)},
        {"a directory outside", 48, Little32(0xFFFFFF)},
        {"a directory that is a ring", LinkOf(directory), Little32(directory)},
        {"a table of small sectors that is a ring", LinkOf(smallTable), Little32(smallTable)},
        {"a stream that is a ring", LinkOf(Number32(summary + 116)), Little32(Number32(summary + 116))},
        {"a stream of another", summary + 116, Little32(directory)},
        {"the same of a stream whose name has no length", summary + 64, unnamed},
        {"a limit of small streams", 56, Little32(100000)},
        {"a longer stream than its sectors", summary + 120, Little32(50000)},
        {"a small stream that is a ring", OffsetOf(smallTable) + 4 * Number32(small + 116),
         Little32(Number32(small + 116))},
        {"a tree that is a ring", summary + 68, Little32((summary - OffsetOf(directory)) / 128)},
        {"a tree that leads outside", summary + 72, Little32(0x7FFF)},
        {"a name beyond its entry", small + 64, Little16(0xFFFF)},
        {"no root", OffsetOf(directory) + 66, std::string(1, '\2')},
    };
    EXPECT_EQ(ReadWith(0, ""), L"0 T");
    for (const auto& test : cases) EXPECT_EQ(ReadWith(test.offset, test.change), L"- (unset)") << test.what;
    // Damage where nothing is read does no harm.
    const uint32_t body = Number32(EntryOf(L"Body") + 116);
    EXPECT_EQ(ReadWith(LinkOf(body), Little32(body)), L"0 T");
}

TEST_F(DamagedCompoundTest, RefusesEveryTruncation) {
    for (size_t size = 0; size < bytes_.size(); size += 100) {
        const String path = folder_.Put(L"b.doc", bytes_.substr(0, size));
        clsDocu document;
        EXPECT_NE(Read(ReadCompoundProperties, path), L"0 ") << size;
    }
}

TEST(PropertySetTest, HasItsValuesInside) {
    const auto isSound = [](const std::string& set) {
        return IsPropertySetSound({reinterpret_cast<const uint8_t*>(set.data()), set.size()});
    };
    const auto value = [&](uint32_t id, const std::string& bytes) {
        return isSound(SummarySet({{id, bytes}}));
    };
    EXPECT_TRUE(value(2, NarrowValue("text")));
    EXPECT_TRUE(value(17, Little32(VT_CF) + Little32(8) + Little32(3) + "data"));
    EXPECT_TRUE(value(0, Little32(1) + Little32(2) + Little32(5) + std::string("name", 5)));
    EXPECT_FALSE(value(2, Little32(VT_LPSTR) + Little32(5) + "text"));
    EXPECT_FALSE(value(2, Little32(VT_LPSTR) + Little32(0)));
    EXPECT_FALSE(value(2, Little32(VT_LPWSTR) + Little32(0x80000001) + "text"));
    EXPECT_FALSE(value(2, Little32(VT_VECTOR | VT_LPSTR) + Little32(0)));
    EXPECT_FALSE(value(12, Little32(VT_FILETIME) + Little32(0)));
    EXPECT_FALSE(value(17, Little32(VT_CF) + Little32(3) + "dat"));
    EXPECT_FALSE(value(0, Little32(0xFFFFFFFF) + Little32(2) + Little32(1) + "n"));

    const std::string set = SummarySet({{2, NarrowValue("text")}, {3, NarrowValue("other text")}});
    const auto with = [&](size_t offset, uint32_t number) {
        std::string changed = set;
        return isSound(changed.replace(offset, 4, Little32(number)));
    };
    EXPECT_TRUE(isSound(set));
    EXPECT_FALSE(isSound(set.substr(0, set.size() - 1)));
    EXPECT_FALSE(with(0, 0));
    EXPECT_FALSE(with(24, 0));          // no section
    EXPECT_FALSE(with(44, 0xFFFFFFF0)); // where it is
    EXPECT_FALSE(with(48, 4));          // its size
    EXPECT_FALSE(with(52, 0x20000000)); // its number of properties
    EXPECT_FALSE(with(60, 0x7FFFFFFF)); // where the first is
    EXPECT_FALSE(with(84, 1200));       // narrow texts do not end as those of a Unicode set do
    EXPECT_FALSE(with(56, 99));         // nor as those of a set without a code page
    // Values that share their bytes would be copied for each.
    std::vector<std::pair<uint32_t, std::string>> many(100, {2, ""});
    many.back().second = NarrowValue(std::string(1000, 'x'));
    EXPECT_FALSE(isSound(SummarySet(many)));
}

} // namespace
} // namespace vxut::test
