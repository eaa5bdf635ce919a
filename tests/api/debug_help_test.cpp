// The stack engine and the exception protection as a host sees them.
#include "util/debug_help.h"
#include "util/exception_handler.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

TEST(DebugHelpExports, DoNothingWithoutAJob) {
    IDBGStackTraceList* frames = reinterpret_cast<IDBGStackTraceList*>(1);
    IDBGModuleList* modules = reinterpret_cast<IDBGModuleList*>(1);
    wchar_t name[] = L"x.dmp";
    EXPECT_EQ(UtilDebugHelpGetStackTrace(nullptr, &frames, nullptr), 0);
    EXPECT_EQ(UtilDebugHelpGetModuleList(nullptr, &modules), 0);
    EXPECT_EQ(frames, nullptr);
    EXPECT_EQ(modules, nullptr);
    EXPECT_EQ(UtilDebugHelpWriteMiniDump(nullptr, name, 6, nullptr), 0);
    UtilDebugHelpSetOption(nullptr, 1, 1);
    UtilDebugHelpJobClose(nullptr);
}

// The DLL's own symbols are in the PDB beside it.
TEST(DebugHelpExports, WalkShowsTheDllAndListsIt) {
    const HUTILDEBUGHELP job = UtilDebugHelpJobOpen();
    ASSERT_NE(job, nullptr);
    IDBGStackTraceList* frames = nullptr;
    ASSERT_EQ(UtilDebugHelpGetStackTrace(job, &frames, nullptr), 1);
    const DBGStackTraceItem* frame = nullptr;
    ASSERT_EQ(frames->Next(1, &frame, nullptr), S_OK);
    EXPECT_STREQ(frame->module, "vxut21");
    EXPECT_TRUE(std::strstr(frame->fullName, "WalkStack")) << frame->fullName;
    EXPECT_TRUE(std::strstr(frame->file, "debug_help_job.cpp")) << frame->file;
    frames->Release();
    IDBGModuleList* modules = nullptr;
    ASSERT_EQ(UtilDebugHelpGetModuleList(job, &modules), 1);
    bool isListed = false;
    for (const DBGModuleItem* module; modules->Next(1, &module, nullptr) == S_OK;) {
        if (std::strcmp(module->name, "vxut21.dll") != 0) continue;
        isListed = true;
        EXPECT_STREQ(module->fileVersion, "21.1.0.0");
        EXPECT_STREQ(module->company, "Velmora");
        EXPECT_STREQ(module->symbolType, "PDB");
    }
    EXPECT_TRUE(isListed);
    modules->Release();
    UtilDebugHelpJobClose(job);
}

TEST(ExceptionHandlerExports, NeedNoPartner) {
    UtilExHandlerJobClose();
    UtilExHandlerEndProtection(0);
    EXPECT_EQ(UtilExHandlerSetOption(UTIL_EXHANDLER_PACK_ALWAYS, 0), 0);
    EXPECT_EQ(UtilExHandlerSetOption(99, 1), -7);
    UtilExHandlerReportFatal(99, nullptr);
    UtilExHandlerReportFatal(UTIL_EXHANDLER_ABORT, L"not protected");
    EXPECT_EQ(UtilExHandlerJobOpen(), 1);
    UtilExHandlerStartProtection(0);
    UtilExHandlerEndProtection(0);
    UtilExHandlerJobClose();
}

} // namespace
