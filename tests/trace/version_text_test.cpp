#include "trace/version_text.h"

#include "base/owners.h"

#include <gtest/gtest.h>

namespace vxut {
namespace {

TEST(VersionTextTest, ReadsTheResourcesOfALibrary) {
    const clsAutoFreeLibrary loaded(LoadLibraryW(L"version.dll"));
    wchar_t path[MAX_PATH];
    GetModuleFileNameW(loaded.Get(), path, MAX_PATH);
    const String fromModule = BuildVersionText(path, L"a.dll");
    EXPECT_EQ(fromModule.Left(6), L"A.DLL ");
    EXPECT_EQ(Find(fromModule.Text(), L"no version"), -1);
    EXPECT_EQ(BuildVersionText(L"x:\\not there.dll", L"a.dll"), L"A.DLL  <no version info>");
}

} // namespace
} // namespace vxut
