// The text encoding as a host sees it.
#include "util/convert.h"

#include "../support/fake_stream.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vxut::test {
namespace {

constexpr std::string_view kBytes = "What a host keeps in a text field";
const std::wstring kText = L"V2hhdCBhIGhvc3Qga2VlcHMgaW4gYSB0ZXh0IGZpZWxk";

std::string BytesOfMemory(HGLOBAL memory, size_t size) {
    std::string bytes(static_cast<const char*>(GlobalLock(memory)), size);
    GlobalUnlock(memory);
    return bytes;
}

HGLOBAL MemoryOf(std::string_view bytes) {
    const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, bytes.size());
    bytes.copy(static_cast<char*>(GlobalLock(memory)), bytes.size());
    GlobalUnlock(memory);
    return memory;
}

TEST(ConvertTest, TextFitsOrIsCut) {
    const auto size = static_cast<int64_t>(kText.size()) + 1;
    wchar_t buffer[100];
    EXPECT_EQ(UtilConvertBLOBToString(kBytes.data(), kBytes.size(), nullptr, 50, 0), size);
    EXPECT_EQ(UtilConvertBLOBToString(kBytes.data(), kBytes.size(), buffer, 0, 0), size);
    EXPECT_EQ(UtilConvertBLOBToString(kBytes.data(), kBytes.size(), buffer, kText.size() + 1, 0), 0);
    EXPECT_EQ(buffer, kText);
    buffer[kText.size()] = L'#';
    EXPECT_EQ(UtilConvertBLOBToString(kBytes.data(), kBytes.size(), buffer, kText.size(), 0),
              UTIL_CONVERT_ERR_SMALL);
    EXPECT_EQ(buffer, kText.substr(0, kText.size() - 1));
    EXPECT_EQ(buffer[kText.size()], L'#');
    EXPECT_EQ(UtilConvertBLOBToString(kBytes.data(), kBytes.size(), buffer, 1, 0), UTIL_CONVERT_ERR_SMALL);
    EXPECT_STREQ(buffer, L"");
    EXPECT_EQ(UtilConvertBLOBToString(nullptr, 0, buffer, 100, 1), 0);
    EXPECT_STREQ(buffer, L"");
}

TEST(ConvertTest, BlocksStreamsAndMemoryRoundTrip) {
    const HGLOBAL memory = MemoryOf(kBytes);
    const size_t memorySize = GlobalSize(memory);
    FakeStream source{std::string(kBytes)};
    source.position = 5; // the whole stream counts
    for (const int compress : {0, 1}) {
        wchar_t texts[3][200];
        EXPECT_EQ(UtilConvertBLOBToString(kBytes.data(), kBytes.size(), texts[0], 200, compress), 0);
        EXPECT_EQ(UtilConvertStreamToString(&source, texts[1], 200, compress), 0);
        EXPECT_EQ(UtilConvertHGLOBALToString(memory, texts[2], 200, compress), 0);
        EXPECT_STREQ(texts[0], texts[1]);
        EXPECT_EQ(std::wstring(texts[0]).starts_with(L"@2@"), compress == 1);

        std::vector<char> bytes(200, '#');
        EXPECT_EQ(UtilConvertStringToBLOB(texts[2], bytes.data(), 200), static_cast<int64_t>(memorySize));
        EXPECT_EQ(std::string_view(bytes.data(), kBytes.size()), kBytes);
        EXPECT_EQ(UtilConvertStringToBLOB(texts[0], nullptr, 0), static_cast<int64_t>(kBytes.size()));

        FakeStream stream("something that is longer than what replaces it");
        EXPECT_EQ(UtilConvertStringToStream(texts[0], &stream), 0);
        EXPECT_EQ(stream.bytes, kBytes);
        EXPECT_EQ(stream.position, 0u);
        EXPECT_EQ(stream.references, 1u);

        HGLOBAL made = MemoryOf("old");
        EXPECT_EQ(UtilConvertStringToHGLOBAL(texts[0], &made), 0);
        ASSERT_GE(GlobalSize(made), kBytes.size());
        EXPECT_EQ(BytesOfMemory(made, kBytes.size()), kBytes);
        GlobalFree(made);
    }
    EXPECT_EQ(GlobalSize(memory), memorySize); // it stayed the host's
    GlobalFree(memory);
}

TEST(ConvertTest, EmptyTextIsAnEmptyBlock) {
    FakeStream stream("old");
    EXPECT_EQ(UtilConvertStringToBLOB(L"", nullptr, 0), 0);
    EXPECT_EQ(UtilConvertStringToStream(L"", &stream), 0);
    EXPECT_EQ(stream.bytes, "");
    HGLOBAL made = nullptr;
    EXPECT_EQ(UtilConvertStringToHGLOBAL(L"", &made), 0);
    EXPECT_NE(made, nullptr);
    wchar_t text[4] = L"abc";
    EXPECT_EQ(UtilConvertHGLOBALToString(made, text, 4, 1), 0);
    EXPECT_STREQ(text, L"");
    GlobalFree(made);
}

TEST(ConvertTest, BadArgumentsAndCapacities) {
    wchar_t text[10];
    char bytes[3];
    FakeStream stream;
    HGLOBAL memory = nullptr;
    EXPECT_EQ(UtilConvertBLOBToString(nullptr, 1, text, 10, 0), UTIL_CONVERT_ERR_ARGUMENT);
    EXPECT_EQ(UtilConvertStreamToString(nullptr, text, 10, 0), UTIL_CONVERT_ERR_ARGUMENT);
    EXPECT_EQ(UtilConvertHGLOBALToString(nullptr, text, 10, 0), UTIL_CONVERT_ERR_ARGUMENT);
    EXPECT_EQ(UtilConvertStringToBLOB(nullptr, bytes, 3), UTIL_CONVERT_ERR_ARGUMENT);
    EXPECT_EQ(UtilConvertStringToStream(nullptr, &stream), UTIL_CONVERT_ERR_ARGUMENT);
    EXPECT_EQ(UtilConvertStringToStream(L"QUJD", nullptr), UTIL_CONVERT_ERR_ARGUMENT);
    EXPECT_EQ(UtilConvertStringToHGLOBAL(nullptr, &memory), UTIL_CONVERT_ERR_ARGUMENT);
    EXPECT_EQ(UtilConvertStringToHGLOBAL(L"QUJD", nullptr), UTIL_CONVERT_ERR_ARGUMENT);

    bytes[0] = '#';
    EXPECT_EQ(UtilConvertStringToBLOB(L"QUJDRA==", bytes, 3), UTIL_CONVERT_ERR_CAPACITY);
    EXPECT_EQ(bytes[0], '#');
    EXPECT_EQ(UtilConvertStringToBLOB(L"QUJD", bytes, 3), 3);
    EXPECT_EQ(UtilConvertStringToBLOB(L"@2@QUJD", bytes, 3), 3); // no block, so it stays as it is
}

TEST(ConvertTest, StreamsThatFailAreReportedAndKeepTheirContent) {
    wchar_t text[100] = L"unchanged";
    FakeStream stream{std::string(kBytes)};
    stream.readResult = STG_E_READFAULT;
    EXPECT_EQ(UtilConvertStreamToString(&stream, text, 100, 0), UTIL_CONVERT_ERR_FAILED);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_READ_FAULT));
    EXPECT_STREQ(text, L"unchanged");

    FakeStream full("old");
    full.capacity = 10;
    EXPECT_EQ(UtilConvertStringToStream(kText.c_str(), &full), UTIL_CONVERT_ERR_FAILED);
    EXPECT_EQ(full.bytes, "old");
}

} // namespace
} // namespace vxut::test
