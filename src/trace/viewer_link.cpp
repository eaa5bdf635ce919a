#include "trace/viewer_link.h"

#include "base/debug.h"
#include "base/identity.h"
#include "base/text_conversion.h"
#include "trace/record_splitter.h"

#include <cwchar>

namespace vxut {
namespace {

// One program exchanges no greetings; its name is told from others by more units at the join than at the
// leave, on which viewers rely.
constexpr wchar_t kSilentProgram[] = L"resweaver";
constexpr size_t kUnitsAtJoin = 9;
constexpr size_t kUnitsAtLeave = 8;

static_assert(sizeof(UtilTraceBlock) == sizeof(LONG64));

bool IsSilent(size_t units) { return _wcsnicmp(Identity().processFileName, kSilentProgram, units) == 0; }

HWND WindowOf(LONG64 value) { return reinterpret_cast<HWND>(static_cast<INT_PTR>(value)); }

} // namespace

clsViewerLink::clsViewerLink(const ViewerNames& names)
    : names_(names), sharedBlock_(names.block, sizeof(UtilTraceBlock)) {
    named_ = static_cast<volatile LONG64*>(sharedBlock_.View());
    if (named_) return;
    if (sharedBlock_.HasMapping()) {
        OutputDebugStringW(L"_pTRCWINInfo FAIL");
    } else {
        const String error = String::FromError(GetLastError());
        OutputDebugStringW((L"TRCWIN global info struct cannot be created: " + error).Text());
    }
}

HWND clsViewerLink::NamedWindow() const noexcept { return named_ ? WindowOf(*named_) : nullptr; }

// A viewer that starts at this moment has the first say.
void clsViewerLink::FindRunningViewer() {
    if (!named_ || sharedBlock_.WasThere()) return;
    const HWND running = FindWindowW(names_.windowClass, nullptr);
    InterlockedCompareExchange64(named_, reinterpret_cast<INT_PTR>(running), 0);
}

void clsViewerLink::Attach() {
    seen_ = NamedWindow();
    window_ = seen_ && IsWindow(seen_) ? seen_ : nullptr;
    capability_ = 0;
    mailslot_.Close();
    if (!window_) return;
    if (!mailslot_.Open(names_.mailslot)) OutputDebugStringW(L"DebugPipe FAIL");
    DWORD_PTR takesUtf8 = 0;
    const bool isAnswering = Ask(UTIL_TRACE_QUERY_UTF8, takesUtf8);
    codePage_ = takesUtf8 ? CP_UTF8 : CP_ACP;
    Greet();
    // A viewer that hangs is not waited for a second time.
    if (isAnswering) Ask(UTIL_TRACE_QUERY_CAPABILITY, capability_);
}

void clsViewerLink::Greet() {
    isGreeted_ = true;
    if (IsSilent(kUnitsAtJoin)) return;
    const ProcessIdentity& identity = Identity();
    if (wcscmp(identity.processPath, identity.libraryPath) == 0) {
        DebugWriteAs(nullptr, 0, L"++%s [%s]", version_.Text(), identity.processPath);
    } else {
        DebugWriteAs(nullptr, 0, L"++%s [%s] [%s]", version_.Text(), identity.processPath,
                     identity.libraryDirectory);
    }
}

// The window stays the attached one: a process that ends has no more to do with viewers that come.
void clsViewerLink::Detach() {
    if (isGreeted_ && IsWindow(window_) && !IsSilent(kUnitsAtLeave))
        DebugWriteAs(nullptr, 0, L"--%s [%s]", version_.Text(), Identity().processPath);
    isGreeted_ = false;
    mailslot_.Close();
}

void clsViewerLink::Send(const wchar_t* line) {
    if (!window_) return;
    if (NarrowText(codePage_, line, -1, bytes_, sizeof bytes_) == 0) {
        OutputDebugStringW(L"ERR converting TRCWIN output");
        return;
    }
    SplitRecords(bytes_, [this](char* record, size_t bytes) { SendRecord(record, bytes); });
}

void clsViewerLink::SendRecord(char* record, size_t bytes) {
    if (!window_) return;
    if (mailslot_.IsOpen()) {
        SendToMailslot(record, bytes);
    } else {
        SendToWindow(record, bytes);
    }
    if (IsWindow(window_)) return;
    window_ = nullptr;
    isGreeted_ = false;
    mailslot_.Close();
}

// What the mailslot refuses the window may still take; one that is full belongs to a viewer that hangs.
void clsViewerLink::SendToMailslot(char* record, size_t bytes) {
    record[bytes] = UTIL_TRACE_RECORD_END;
    const auto outcome = mailslot_.Write(record, bytes + 1);
    if (outcome == clsViewerMailslot::Outcome::kWritten) return;
    OutputDebugStringW(L"TRCWIN: cannot write data!");
    if (outcome == clsViewerMailslot::Outcome::kFailed) SendToWindow(record, bytes);
}

void clsViewerLink::SendToWindow(char* record, size_t bytes) const {
    record[bytes] = '\0';
    DWORD_PTR answer = 0;
    SendMessageToWindow(UTIL_TRACE_LINE, record, bytes + 1, answer);
}

bool clsViewerLink::Ask(DWORD query, DWORD_PTR& answer) const {
    return SendMessageToWindow(query, "", 0, answer);
}

bool clsViewerLink::SendMessageToWindow(DWORD purpose, const char* data, size_t bytes,
                                        DWORD_PTR& answer) const {
    COPYDATASTRUCT copy = {purpose, static_cast<DWORD>(bytes), const_cast<char*>(data)};
    return SendMessageTimeoutW(window_, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&copy), SMTO_ABORTIFHUNG,
                               UTIL_TRACE_PATIENCE, &answer) != 0;
}

} // namespace vxut
