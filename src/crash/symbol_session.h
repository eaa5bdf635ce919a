// The symbols of the process: the session with dbghelp, its modules, and look-ups by address.
#pragma once

#include "base/owners.h"
#include "crash/debug_help_library.h"
#include "crash/debug_items.h"

#include <cstdint>

namespace vxut {

struct scSymbolOptions {
    bool loadsLines = true;
    bool readsVersions = true;
};

// Used by one thread at a time, by the rules of clsDBGHelpWrapper. Opened by the first call that needs
// symbols, which loads those of all modules. The session has a process handle of its own, so that one of the
// host is not disturbed.
class clsSymbolSession {
public:
    clsSymbolSession(clsRPDBGHELP& library, HANDLE process, const scSymbolOptions& options)
        : library_(library), process_(process), options_(options) {}
    ~clsSymbolSession();
    clsSymbolSession(const clsSymbolSession&) = delete;
    clsSymbolSession& operator=(const clsSymbolSession&) = delete;

    // Opens the session and loads the modules, once. Returns false if the modules cannot be listed; symbols
    // may be missing nevertheless.
    bool Open();
    // The modules, after Open().
    const clsAutoRelease<clsDBGModuleList*>& Modules() const { return modules_; }

    // The start of the module that contains an address, 0 if there is none.
    uint64_t ModuleBase(uint64_t address);
    // Information about the module that contains an address; null if there is none. Valid until the next
    // call.
    const IMAGEHLP_MODULE64* ModuleInformation(uint64_t address);

private:
    static BOOL CALLBACK OnEvent(HANDLE process, ULONG code, ULONG64 data, ULONG64 session);

    bool Initialize();
    void AddModule(uint64_t base, uint32_t size, const String& path);
    bool ReadInformation(uint64_t address);

    clsRPDBGHELP& library_;
    const HANDLE process_;
    const scSymbolOptions options_;
    bool isInitialized_ = false;
    DWORD earlierOptions_ = 0;
    clsAutoRelease<clsDBGModuleList*> modules_;
    IMAGEHLP_MODULE64 information_ = {}; // of the last look-up
    bool hasInformation_ = false;
};

// The text for the kind of a module's symbols.
const char* SymbolTypeText(SYM_TYPE type);

} // namespace vxut
