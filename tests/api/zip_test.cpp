// The ZIP family as a host sees it.
#include "util/zip.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace {

namespace fs = std::filesystem;

class ZipExports : public testing::Test {
protected:
    void SetUp() override {
        folder_ = fs::temp_directory_path() / (L"vxut-zip-" + std::to_wstring(GetCurrentProcessId()));
        fs::remove_all(folder_);
        fs::create_directories(folder_ / L"in" / L"sub");
        std::ofstream(folder_ / L"in" / L"a.txt") << "text";
        std::ofstream(folder_ / L"in" / L"sub" / L"b.bin") << "more";
        archive_ = folder_ / L"a.zip";
    }
    void TearDown() override { fs::remove_all(folder_); }

    std::string Bytes() const {
        std::ifstream file(archive_, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    // Whether the central directory of the archive has an entry of that name.
    static bool Lists(const std::string& bytes, const std::string& name) {
        const size_t index = bytes.find("PK\1\2");
        return index != std::string::npos && bytes.find(name, index) != std::string::npos;
    }

    fs::path folder_;
    fs::path archive_;
};

TEST_F(ZipExports, FilesAndFoldersEndUpInTheArchive) {
    std::ofstream(archive_) << "old";
    const HUTILZIP zip = UtilZIPCreate(archive_.c_str(), L"comment");
    ASSERT_NE(zip, nullptr);
    EXPECT_EQ(fs::file_size(archive_), 0u);
    EXPECT_FALSE(std::ifstream(archive_).is_open());
    EXPECT_EQ(UtilZIPAppend(zip, (folder_ / L"in" / L"a.txt").c_str(), nullptr, L"first"), UTIL_ZIP_OK);
    EXPECT_EQ(UtilZIPAppend(zip, (folder_ / L"absent").c_str(), nullptr, nullptr), UTIL_ZIP_ERR_SOURCE);
    EXPECT_EQ(UtilZIPAppend(zip, nullptr, nullptr, nullptr), UTIL_ZIP_ERR_SOURCE);
    EXPECT_EQ(UtilZIPAppendList(zip, (folder_ / L"in").c_str(), nullptr, UTIL_ZIP_RECURSIVE), UTIL_ZIP_OK);
    EXPECT_EQ(UtilZIPAppendList(zip, (folder_ / L"absent").c_str(), L"*", 0), UTIL_ZIP_OK);
    EXPECT_EQ(UtilZIPClose(zip), UTIL_ZIP_OK);
    const std::string bytes = Bytes();
    for (const char* name : {"first", "a.txt", "sub/", "sub/b.bin"}) EXPECT_TRUE(Lists(bytes, name)) << name;
    EXPECT_TRUE(bytes.ends_with("comment"));
    EXPECT_EQ(bytes.substr(bytes.rfind("PK\5\6") + 8, 4), std::string("\4\0\4\0", 4)) << "four entries";
}

TEST_F(ZipExports, NullHandlesAreNoFailureAndBadNamesNoArchive) {
    EXPECT_EQ(UtilZIPAppend(nullptr, L"a", nullptr, nullptr), UTIL_ZIP_OK);
    EXPECT_EQ(UtilZIPAppendList(nullptr, L"a", nullptr, 0), UTIL_ZIP_OK);
    EXPECT_EQ(UtilZIPClose(nullptr), UTIL_ZIP_OK);
    EXPECT_EQ(UtilZIPCreate(nullptr, nullptr), nullptr);
    EXPECT_EQ(UtilZIPCreate((folder_ / L"absent" / L"a.zip").c_str(), nullptr), nullptr);
    EXPECT_EQ(UtilZIPCreate(folder_.c_str(), nullptr), nullptr);
}

} // namespace
