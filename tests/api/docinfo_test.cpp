// Document information as a host sees it.
#include "util/docinfo.h"
#include "util/path.h"

#include <gtest/gtest.h>
// After windows.h, which it needs:
#include <oleauto.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace {

class DocinfoExports : public testing::Test {
protected:
    DocinfoExports() {
        std::ofstream(path_) << "<html><head><title>A title</title></head></html>";
        for (VARIANT& value : values_) VariantInit(&value);
    }
    ~DocinfoExports() override {
        UtilDocInfoClose(list_);
        for (VARIANT& value : values_) VariantClear(&value);
        std::filesystem::remove(path_);
    }

    const std::filesystem::path path_ = std::filesystem::temp_directory_path() /
                                        (L"vxut-" + std::to_wstring(GetCurrentProcessId()) + L".htm");
    HUTILDOCINFO list_ = UtilDocInfoOpen(60);
    VARIANT values_[9];
    DocInfoRequest request_ = {sizeof request_, &values_[0], &values_[1], &values_[2], &values_[3],
                               &values_[4],     &values_[5], &values_[6], &values_[7], &values_[8]};
};

TEST_F(DocinfoExports, EveryWantedPropertyIsWritten) {
    for (VARIANT& value : values_) {
        V_VT(&value) = VT_BSTR;
        V_BSTR(&value) = SysAllocString(L"old, to be released");
    }
    ASSERT_EQ(UtilDocInfoGet(list_, path_.c_str(), &request_, 5), 1u);
    EXPECT_STREQ(V_BSTR(request_.Title), L"A title");
    EXPECT_STREQ(V_BSTR(request_.ResolvedPath), path_.c_str());
    EXPECT_TRUE(V_VT(request_.Created) == VT_DATE && V_DATE(request_.Created) == 0.0);
    ASSERT_EQ(V_VT(request_.Modified), VT_DATE);
    SYSTEMTIME now;
    double date = 0;
    GetLocalTime(&now);
    SystemTimeToVariantTime(&now, &date);
    EXPECT_NEAR(V_DATE(request_.Modified), date, 0.01) << "local time";
    for (const VARIANT* empty :
         {request_.Subject, request_.Author, request_.LastAuthor, request_.Keywords, request_.Comments})
        EXPECT_EQ(V_VT(empty), VT_EMPTY);
}

TEST_F(DocinfoExports, TheSizeOfTheRecordLimitsWhatIsWritten) {
    request_.Size = 72;
    EXPECT_EQ(UtilDocInfoGet(list_, path_.c_str(), &request_, 5), 1u);
    EXPECT_TRUE(V_VT(request_.Title) == VT_BSTR && V_VT(request_.ResolvedPath) == VT_EMPTY);
    VariantClear(request_.Title);
    request_.Size = 71;
    EXPECT_EQ(UtilDocInfoGet(list_, path_.c_str(), &request_, 5), 1u);
    EXPECT_EQ(V_VT(request_.Title), VT_EMPTY);
    request_ = {};
    request_.Size = sizeof request_;
    EXPECT_EQ(UtilDocInfoGet(list_, path_.c_str(), &request_, 5), 1u) << "targets may be null";
    EXPECT_EQ(UtilDocInfoGet(list_, path_.c_str(), nullptr, 5), 1u);
}

TEST_F(DocinfoExports, MissingFilesAndNullHandlesAnswerNothing) {
    EXPECT_EQ(UtilDocInfoGet(list_, L"C:\\no such file.htm", &request_, 5), 0u);
    EXPECT_EQ(UtilDocInfoGet(list_, nullptr, &request_, 5), 0u);
    EXPECT_EQ(UtilDocInfoGet(nullptr, path_.c_str(), &request_, 5), 0u);
    EXPECT_EQ(V_VT(request_.Title), VT_EMPTY);
    UtilDocInfoClose(nullptr);
    for (const wchar_t* path : {L"C:\\a", L"a", static_cast<const wchar_t*>(nullptr)})
        EXPECT_EQ(UtilDocInfoShareAccessibility(path), UTIL_SHARE_NONE);
    EXPECT_EQ(UtilDocInfoShareAccessibility(L"\\\\server\\never asked\\x"), UTIL_SHARE_ACCESSIBLE);
}

TEST_F(DocinfoExports, PathsThatAreOnNoNetworkDriveStayAsTheyAre) {
    for (const auto& convert : {UtilEnsureLocalPath, UtilEnsureUNCPath}) {
        for (const wchar_t* path : {L"C:\\a\\b.txt", L"\\\\server\\share\\x", L"relative", L""}) {
            BSTR text = nullptr;
            EXPECT_EQ(convert(path, &text), 1);
            EXPECT_STREQ(text ? text : L"", path);
            SysFreeString(text);
        }
        BSTR text = reinterpret_cast<BSTR>(1); // must not be looked at
        EXPECT_EQ(convert(nullptr, &text), 0);
        EXPECT_EQ(text, nullptr);
        EXPECT_EQ(convert(L"a", nullptr), 0);
    }
}

} // namespace
