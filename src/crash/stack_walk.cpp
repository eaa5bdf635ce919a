#include "crash/stack_walk.h"

#include "base/debug.h"
#include "crash/frame_values.h"
#include "crash/module_sources.h"
#include "crash/own_memory.h"
#include "crash/screen_freeze.h"

#include <cstring>

namespace vxut {
namespace {

constexpr DWORD kSymbolBytes = sizeof(DBGStackTraceItem::symbol);

BOOL CALLBACK ReadMemory(HANDLE, DWORD64 address, void* target, DWORD bytes, DWORD* read) {
    const bool isRead = ReadOwnMemory(target, address, bytes);
    if (read) *read = isRead ? bytes : 0;
    return isRead;
}

// What quick frames are walked with: the system's own tables, without symbols.
void* CALLBACK FindFunction(HANDLE, DWORD64 address) {
    DWORD64 base = 0;
    return RtlLookupFunctionEntry(address, &base, nullptr);
}

// The start of the image that contains an address; 0 if there is none.
uint64_t ImageBase(uint64_t address) {
    MEMORY_BASIC_INFORMATION region;
    // NOLINTNEXTLINE(performance-no-int-to-ptr)
    if (VirtualQuery(reinterpret_cast<const void*>(address), &region, sizeof region) != sizeof region)
        return 0;
    const bool isImage = region.State != MEM_FREE && region.Type == MEM_IMAGE;
    return isImage ? reinterpret_cast<uint64_t>(region.AllocationBase) : 0;
}

DWORD64 CALLBACK FindModule(HANDLE, DWORD64 address) { return ImageBase(address); }

class Walker {
public:
    Walker(clsRPDBGHELP& library, HANDLE process, clsSymbolSession& symbols, const scStackWalk& walk,
           clsDBGStackTraceList& list)
        : library_(library),
          process_(process),
          symbols_(symbols),
          walk_(walk),
          list_(list),
          wantsSymbols_((walk.mode & (kFrameSymbols | kFrameArguments)) != 0) {
        context_.registers = *walk.context;
        if (!wantsSymbols_ || !library.SymFunctionTableAccess64.IsAvailable() ||
            !library.SymGetModuleBase64.IsAvailable()) {
            return;
        }
        table_ = library.SymFunctionTableAccess64.Get();
        module_ = library.SymGetModuleBase64.Get();
    }

    void Run() {
        if (walk_.mostFrames < 1) return;
        StartAt();
        LeaveCodeOutsideModules();
        while (count_ < walk_.mostFrames && Step() && Add()) {
        }
    }

private:
    void StartAt() {
        const CONTEXT& start = context_.registers;
        frame_ = {};
        frame_.AddrPC = {start.Rip, 0, AddrModeFlat};
        frame_.AddrFrame = {start.Rbp, 0, AddrModeFlat};
        frame_.AddrStack = {start.Rsp, 0, AddrModeFlat};
    }

    // A call of an address that is no code has pushed the return address, and nothing else has happened
    // since. The system's walk does not know such a frame.
    void LeaveCodeOutsideModules() {
        CONTEXT& start = context_.registers;
        uint64_t returnAddress;
        if (ImageBase(start.Rip) != 0 || !ReadOwnMemory(&returnAddress, start.Rsp, sizeof returnAddress) ||
            ImageBase(returnAddress) == 0) {
            return;
        }
        AddQuickFrame(start.Rip);
        start.Rip = returnAddress;
        start.Rsp += sizeof returnAddress;
        StartAt();
    }

    bool Step() {
        const STACKFRAME64 last = frame_;
        const bool isFirst = isFirstStep_;
        isFirstStep_ = false;
        if (!library_.StackWalk64(IMAGE_FILE_MACHINE_AMD64, process_, walk_.thread, &frame_,
                                  &context_.registers, ReadMemory, table_, module_, nullptr)) {
            return false;
        }
        // A damaged stack may lead back to where the walk is.
        return isFirst || frame_.AddrPC.Offset != last.AddrPC.Offset ||
               frame_.AddrStack.Offset != last.AddrStack.Offset;
    }

    // Adds the frame that the walk has reached. Returns false if it is the last one.
    bool Add() {
        if (!wantsSymbols_) {
            AddQuickFrame(frame_.AddrPC.Offset);
        } else {
            DBGStackTraceItem& item = list_.Add();
            Fill(item);
            if (walk_.mode & kFrameArguments) FillFromArguments(frame_.AddrFrame.Offset, item);
            ++count_;
        }
        // Optimised code may use the frame pointer for anything, so that 0 alone says nothing.
        return frame_.AddrReturn.Offset != 0;
    }

    void AddQuickFrame(uint64_t address) {
        DBGStackTraceItem& item = list_.Add();
        item.isCall = 1;
        item.address = address;
        item.moduleBase = ImageBase(address);
        if (item.moduleBase != 0) CopyToField(item.module, PathOfModule(item.moduleBase).Text());
        ++count_;
    }

    void Fill(DBGStackTraceItem& item) {
        item.address = frame_.AddrPC.Offset;
        // A return address lies behind its call, which may be the last instruction of a function or line.
        const uint64_t looked = count_ == 0 ? item.address : item.address - 1;
        FillModule(item, looked);
        FillSymbol(item, looked);
        if (SetScope(looked)) {
            context_.framePointer = frame_.AddrFrame.Offset;
            context_.isInnermost = count_ == 0;
            AddFrameValues(library_, process_, context_, item, list_);
        }
        FillLine(item, looked);
    }

    void FillModule(DBGStackTraceItem& item, uint64_t address) {
        item.moduleBase = symbols_.ModuleBase(address);
        if (item.moduleBase == 0) item.moduleBase = ImageBase(address);
        if (item.moduleBase == 0) return;
        const IMAGEHLP_MODULE64* const information = symbols_.ModuleInformation(address);
        if (information && information->ModuleName[0])
            CopyToField(item.module, information->ModuleName);
        else
            CopyToField(item.module, PathOfModule(item.moduleBase).Text());
    }

    void FillSymbol(DBGStackTraceItem& item, uint64_t address) {
        alignas(IMAGEHLP_SYMBOL64) char buffer[sizeof(IMAGEHLP_SYMBOL64) + kSymbolBytes] = {};
        auto& symbol = *reinterpret_cast<IMAGEHLP_SYMBOL64*>(buffer);
        symbol.SizeOfStruct = sizeof symbol;
        symbol.MaxNameLength = kSymbolBytes;
        DWORD64 displacement = 0;
        if (!library_.SymGetSymFromAddr64.IsAvailable() ||
            !library_.SymGetSymFromAddr64(process_, address, &displacement, &symbol)) {
            return;
        }
        DebugWrite(L"symbol '%hs'", symbol.Name);
        CopyToField(item.symbol, symbol.Name);
        item.displacement = displacement + (item.address - address);
        Undecorate(item.symbol, item.name, UNDNAME_NAME_ONLY);
        Undecorate(item.symbol, item.fullName, 0);
    }

    template <size_t N>
    void Undecorate(const char* symbol, char (&target)[N], DWORD flags) {
        if (!library_.UnDecorateName.IsAvailable() || !library_.UnDecorateName(symbol, target, N, flags))
            target[0] = '\0';
        target[N - 1] = '\0';
    }

    // Makes the function around an address the scope in which values are looked for.
    bool SetScope(uint64_t address) {
        if (!library_.SymSetContext.IsAvailable()) return false;
        IMAGEHLP_STACK_FRAME scope = {};
        scope.InstructionOffset = address;
        scope.ReturnOffset = frame_.AddrReturn.Offset;
        scope.FrameOffset = frame_.AddrFrame.Offset;
        scope.StackOffset = frame_.AddrStack.Offset;
        SetLastError(ERROR_SUCCESS);
        if (library_.SymSetContext(process_, &scope, nullptr)) return true;
        const DWORD error = GetLastError();
        if (error == ERROR_SUCCESS) return true; // the scope was the same before
        DebugWrite(L"SymSetContext(%x) failed: %s", static_cast<uint32_t>(address),
                   String::FromError(error).Text());
        return false;
    }

    void FillLine(DBGStackTraceItem& item, uint64_t address) {
        if (!library_.SymGetLineFromAddr64.IsAvailable()) return;
        IMAGEHLP_LINE64 line = {};
        line.SizeOfStruct = sizeof line;
        DWORD displacement = 0;
        if (!library_.SymGetLineFromAddr64(process_, address, &displacement, &line)) {
            DebugWrite(L"SymGetLineFromAddr64() failed: %s", String::FromError(GetLastError()).Text());
            return;
        }
        item.line = line.LineNumber;
        CopyToField(item.file, line.FileName);
    }

    clsRPDBGHELP& library_;
    const HANDLE process_;
    clsSymbolSession& symbols_;
    const scStackWalk& walk_;
    clsDBGStackTraceList& list_;
    const bool wantsSymbols_;
    PFUNCTION_TABLE_ACCESS_ROUTINE64 table_ = FindFunction;
    PGET_MODULE_BASE_ROUTINE64 module_ = FindModule;
    scFrameContext context_ = {};
    STACKFRAME64 frame_ = {};
    int32_t count_ = 0;
    bool isFirstStep_ = true;
};

} // namespace

bool WalkStack(clsRPDBGHELP& library, HANDLE process, clsSymbolSession& symbols, const scStackWalk& walk,
               clsDBGStackTraceList& list) {
    if (!library.StackWalk64.IsAvailable()) return false;
    if ((walk.mode & (kFrameSymbols | kFrameArguments)) != 0 && !symbols.Open()) return false;
    const clsScreenFreeze freeze;
    Walker(library, process, symbols, walk, list).Run();
    return true;
}

} // namespace vxut
