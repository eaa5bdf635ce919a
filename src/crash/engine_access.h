// The reporter's access to the stack engine, through the exports of the library's file.
#pragma once

#include "base/late_load.h"
#include "base/owners.h"
#include "util/debug_help.h"
#include "util/environment.h"

namespace vxut {

class clsUTILForDebugHelpWrapper : public CLateLoadBase {
public:
    clsUTILForDebugHelpWrapper();

    // Loads the library's file. Returns false if that fails, or if another thread holds the loader's lock for
    // so long that waiting for it could mean to wait for ever.
    bool IsLoaded();

    clsLateFunction<decltype(::UtilDebugHelpJobOpen)> UtilDebugHelpJobOpen{*this, "UtilDebugHelpJobOpen", 0};
    clsLateFunction<decltype(::UtilDebugHelpJobClose)> UtilDebugHelpJobClose{*this, "UtilDebugHelpJobClose",
                                                                             4};
    clsLateFunction<decltype(::UtilDebugHelpSetOption)> UtilDebugHelpSetOption{*this,
                                                                               "UtilDebugHelpSetOption", 12};
    clsLateFunction<decltype(::UtilDebugHelpGetStackTrace)> UtilDebugHelpGetStackTrace{
        *this, "UtilDebugHelpGetStackTrace", 12};
    clsLateFunction<decltype(::UtilDebugHelpGetModuleList)> UtilDebugHelpGetModuleList{
        *this, "UtilDebugHelpGetModuleList", 8};
    clsLateFunction<decltype(::UtilDebugHelpWriteMiniDump)> UtilDebugHelpWriteMiniDump{
        *this, "UtilDebugHelpWriteMiniDump", 16};

protected:
    HMODULE Load(const wchar_t* name) override { return LoadLibraryW(name); }
};

// A job of the engine for the time of its scope. A function that is missing counts as a failed call.
class clsUtilDebugHelpWrapper {
public:
    clsUtilDebugHelpWrapper();
    ~clsUtilDebugHelpWrapper();
    clsUtilDebugHelpWrapper(const clsUtilDebugHelpWrapper&) = delete;
    clsUtilDebugHelpWrapper& operator=(const clsUtilDebugHelpWrapper&) = delete;

    // Whether the library's file was loaded. A job that could not be opened is present all the same.
    bool IsPresent() const { return isPresent_; }

    clsAutoRelease<IDBGStackTraceList*> StackTrace(const CONTEXT* context);
    clsAutoRelease<IDBGModuleList*> ModuleList();
    bool WriteMiniDump(wchar_t* fileName, uint32_t size, EXCEPTION_POINTERS* exception);

private:
    clsUTILForDebugHelpWrapper library_;
    const bool isPresent_;
    HUTILDEBUGHELP job_ = nullptr;
};

} // namespace vxut
