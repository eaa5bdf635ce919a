#include "host/dump_stack.h"

#include "host/text.h"

#include <windows.h>
// After windows.h, which it needs:
#include <dbghelp.h>

#include <cstdio>

namespace vlm {

namespace {

constexpr int kMostFrames = 100;
constexpr size_t kMostModules = 1000;

std::wstring FileName(const std::wstring& path) {
    const size_t slash = path.find_last_of(L"\\/");
    return slash == std::wstring::npos ? path : path.substr(slash + 1);
}

// A session of dbghelp about a process that is not there. The object's address stands for the process.
class DumpSession {
public:
    explicit DumpSession(const DumpReader& dump) : dump_(dump) {
        current = this;
        SymSetOptions(SYMOPT_LOAD_LINES | SYMOPT_UNDNAME | SYMOPT_FAIL_CRITICAL_ERRORS | SYMOPT_NO_PROMPTS);
        isOpen_ = SymInitialize(Handle(), nullptr, FALSE);
        for (size_t i = 0; isOpen_ && i < dump.Modules().size() && i < kMostModules; ++i)
            Load(dump.Modules()[i]);
    }
    ~DumpSession() {
        if (isOpen_) SymCleanup(Handle());
        current = nullptr;
    }
    DumpSession(const DumpSession&) = delete;
    DumpSession& operator=(const DumpSession&) = delete;

    std::vector<DumpFrame> Walk() {
        std::vector<DumpFrame> frames;
        CONTEXT context;
        if (!dump_.Registers(context)) return frames;
        LeaveNowhere(context, frames);
        STACKFRAME64 frame = {};
        frame.AddrPC = {context.Rip, 0, AddrModeFlat};
        frame.AddrFrame = {context.Rbp, 0, AddrModeFlat};
        frame.AddrStack = {context.Rsp, 0, AddrModeFlat};
        uint64_t lastStack = 0;
        for (int i = 0; i < kMostFrames; ++i) {
            if (!isOpen_ || !StackWalk64(IMAGE_FILE_MACHINE_AMD64, Handle(), nullptr, &frame, &context,
                                         ReadMemory, SymFunctionTableAccess64, SymGetModuleBase64, nullptr)) {
                if (frames.empty()) frames.push_back(Describe(context.Rip, true));
                break;
            }
            if (frame.AddrPC.Offset == 0 || (i > 0 && frame.AddrStack.Offset <= lastStack)) break;
            lastStack = frame.AddrStack.Offset;
            frames.push_back(Describe(frame.AddrPC.Offset, frames.empty()));
        }
        return frames;
    }

private:
    HANDLE Handle() { return static_cast<HANDLE>(this); }

    // A file that is not the one of the dump would give wrong names.
    void Load(const DumpModule& module) {
        const std::string path = BytesOf(module.path, CP_ACP);
        if (GetFileAttributesA(path.c_str()) == INVALID_FILE_ATTRIBUTES) return;
        SymLoadModuleEx(Handle(), nullptr, path.c_str(), nullptr, module.base, module.size, nullptr, 0);
    }

    static BOOL CALLBACK ReadMemory(HANDLE, DWORD64 address, void* target, DWORD count, DWORD* read) {
        const auto bytes = static_cast<DWORD>(current->dump_.ReadMemory(address, target, count));
        if (read) *read = bytes;
        return bytes == count;
    }

    const DumpModule* ModuleAt(uint64_t address) const {
        for (const DumpModule& module : dump_.Modules())
            if (address - module.base < module.size) return &module;
        return nullptr;
    }

    // A call of an address that is no code has pushed the return address only.
    void LeaveNowhere(CONTEXT& context, std::vector<DumpFrame>& frames) {
        uint64_t back = 0;
        if (ModuleAt(context.Rip) || dump_.ReadMemory(context.Rsp, &back, sizeof back) != sizeof back ||
            !ModuleAt(back))
            return;
        frames.push_back(Describe(context.Rip, true));
        context.Rip = back;
        context.Rsp += sizeof back;
    }

    DumpFrame Describe(uint64_t address, bool isInnermost) {
        DumpFrame frame;
        frame.address = address;
        const uint64_t looked = isInnermost ? address : address - 1;
        if (const DumpModule* module = ModuleAt(looked)) {
            frame.module = FileName(module->path);
            frame.offset = address - module->base;
        }
        alignas(SYMBOL_INFO) char buffer[sizeof(SYMBOL_INFO) + MAX_SYM_NAME] = {};
        auto& symbol = *reinterpret_cast<SYMBOL_INFO*>(buffer);
        symbol.SizeOfStruct = sizeof symbol;
        symbol.MaxNameLen = MAX_SYM_NAME;
        DWORD64 displacement = 0;
        if (isOpen_ && SymFromAddr(Handle(), looked, &displacement, &symbol)) {
            wchar_t text[32];
            _snwprintf(text, std::size(text), L" + 0x%I64x", displacement + (address - looked));
            frame.symbol = WideOf(symbol.Name, CP_UTF8) + text;
        }
        IMAGEHLP_LINE64 line = {};
        line.SizeOfStruct = sizeof line;
        DWORD column = 0;
        if (isOpen_ && SymGetLineFromAddr64(Handle(), looked, &column, &line))
            frame.source = WideOf(line.FileName, CP_ACP) + L", line " + std::to_wstring(line.LineNumber);
        return frame;
    }

    static inline DumpSession* current = nullptr;

    const DumpReader& dump_;
    BOOL isOpen_ = FALSE;
};

} // namespace

std::vector<DumpFrame> WalkDump(const DumpReader& dump) { return DumpSession(dump).Walk(); }

} // namespace vlm
