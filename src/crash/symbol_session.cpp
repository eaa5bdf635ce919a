#include "crash/symbol_session.h"

#include "base/debug.h"
#include "base/guard.h"
#include "crash/module_sources.h"
#include "crash/module_version.h"
#include "crash/symbol_path.h"
#include "files/path.h"

#include <iterator>

namespace vxut {
namespace {

constexpr char kUnknownSymbols[] = "-unknown-";
constexpr const char* kSymbolTypes[] = {"<no known symbols>", "COFF", "CV",  "PDB",    "<exported>",
                                        "<deferred>",         "SYM",  "DIA", "Virtual"};

constexpr DWORD kOptions = SYMOPT_CASE_INSENSITIVE | SYMOPT_OMAP_FIND_NEAREST | SYMOPT_LOAD_ANYTHING |
                           SYMOPT_FAIL_CRITICAL_ERRORS | SYMOPT_AUTO_PUBLICS;
static_assert(kOptions == 0x10261);

constexpr const wchar_t* kSeverities[] = {L"info (0)", L"problem (1)", L"attn (2)", L"fatal (3)"};

const wchar_t* SeverityText(DWORD severity) {
    return severity < std::size(kSeverities) ? kSeverities[severity] : L"unknown severity";
}

void ReportEvent(const wchar_t* kind, ULONG64 data) {
    const auto& event =
        *reinterpret_cast<const IMAGEHLP_CBA_EVENT*>(data); // NOLINT(performance-no-int-to-ptr)
    DebugWrite(L"%s: %s: %hs", kind, SeverityText(event.severity), event.desc);
}

} // namespace

const char* SymbolTypeText(SYM_TYPE type) {
    const auto index = static_cast<size_t>(type);
    return index < std::size(kSymbolTypes) ? kSymbolTypes[index] : kUnknownSymbols;
}

clsSymbolSession::~clsSymbolSession() {
    if (!isInitialized_) return;
    if (library_.SymCleanup.IsAvailable()) library_.SymCleanup(process_);
    library_.SymSetOptions(earlierOptions_);
}

bool clsSymbolSession::Open() {
    if (modules_) return true;
    if (!isInitialized_) isInitialized_ = Initialize();
    LoadedModules loaded;
    if (!ListLoadedModules(library_, process_, loaded)) return false;
    modules_ = clsAutoRelease<clsDBGModuleList*>(new clsDBGModuleList);
    for (const scLoadedModule& module : loaded) AddModule(module.base, module.size, module.path);
    return true;
}

bool clsSymbolSession::Initialize() {
    if (!library_.SymInitializeNarrow.IsAvailable() || !library_.SymSetOptions.IsAvailable() ||
        !library_.SymGetOptions.IsAvailable()) {
        return false;
    }
    earlierOptions_ = library_.SymGetOptions();
    library_.SymSetOptions((earlierOptions_ & ~DWORD{SYMOPT_DEFERRED_LOADS}) | kOptions |
                           (options_.loadsLines ? SYMOPT_LOAD_LINES : 0));
    const String path = SymbolPath();
    DebugWrite(L"sym file path: '%s'", path.Text());
    if (!library_.SymInitializeNarrow(process_, path.Narrow(), FALSE)) {
        DebugWrite(L"SymInitialize() failed: %s", String::FromError(GetLastError()).Text());
        library_.SymSetOptions(earlierOptions_);
        return false;
    }
    if (library_.SymRegisterCallback64.IsAvailable())
        library_.SymRegisterCallback64(process_, OnEvent, reinterpret_cast<ULONG64>(this));
    return true;
}

BOOL CALLBACK clsSymbolSession::OnEvent(HANDLE, ULONG code, ULONG64 data, ULONG64) {
    return Guarded(FALSE, [&] {
        // NOLINTBEGIN(performance-no-int-to-ptr)
        switch (code) {
            case CBA_DEFERRED_SYMBOL_LOAD_START:
                DebugWrite(L"CBA_DEFERRED_SYMBOL_LOAD_START: %hs",
                           reinterpret_cast<const IMAGEHLP_DEFERRED_SYMBOL_LOAD64*>(data)->FileName);
                break;
            case CBA_EVENT:
                ReportEvent(L"CBA_EVENT", data);
                break;
            case CBA_DEBUG_INFO:
                DebugWrite(L"CBA_DEBUG_INFO: %hs", reinterpret_cast<const char*>(data));
                break;
            case CBA_SRCSRV_EVENT:
                ReportEvent(L"CBA_SRCSRV_EVENT", data);
                break;
            default:
                break;
        }
        // NOLINTEND(performance-no-int-to-ptr)
        return FALSE; // dbghelp acts as if nobody had listened
    });
}

// A module whose symbols cannot be loaded is listed all the same.
void clsSymbolSession::AddModule(uint64_t base, uint32_t size, const String& path) {
    DBGModuleItem& item = modules_->Add();
    bool isLoaded = false;
    if (isInitialized_ && library_.SymLoadModule64.IsAvailable()) {
        isLoaded = library_.SymLoadModule64(process_, nullptr, path.Narrow(), nullptr, base, size) != 0;
        if (!isLoaded) DebugWrite(L"SymLoadModule64() failed: %s", String::FromError(GetLastError()).Text());
    }
    CopyToField(item.path, path.Text());
    CopyToField(item.name, FilePart(path).Text());
    CopyToField(item.symbolType,
                isLoaded && ReadInformation(base) ? SymbolTypeText(information_.SymType) : kUnknownSymbols);
    item.base = base;
    item.imageSize = size;
    if (!options_.readsVersions) return;
    const scModuleVersion version = ReadModuleVersion(path);
    CopyToField(item.fileVersion, version.fileVersion.Text());
    CopyToField(item.productVersion, version.productVersion.Text());
    CopyToField(item.company, version.company.Text());
}

uint64_t clsSymbolSession::ModuleBase(uint64_t address) {
    return isInitialized_ && library_.SymGetModuleBase64.IsAvailable()
               ? library_.SymGetModuleBase64(process_, address)
               : 0;
}

const IMAGEHLP_MODULE64* clsSymbolSession::ModuleInformation(uint64_t address) {
    const bool isSame = hasInformation_ && address - information_.BaseOfImage < information_.ImageSize;
    return isSame || ReadInformation(address) ? &information_ : nullptr;
}

// Older versions of dbghelp know a shorter record only.
bool clsSymbolSession::ReadInformation(uint64_t address) {
    hasInformation_ = false;
    if (!isInitialized_ || !library_.SymGetModuleInfo64.IsAvailable()) return false;
    constexpr DWORD kSizes[] = {sizeof information_, offsetof(IMAGEHLP_MODULE64, MachineType)};
    for (const DWORD size : kSizes) {
        information_ = {};
        information_.SizeOfStruct = size;
        hasInformation_ = library_.SymGetModuleInfo64(process_, address, &information_) != FALSE;
        if (hasInformation_) return true;
    }
    return false;
}

} // namespace vxut
